#include "settings/edition.h"

namespace {

struct Edition {
    int maker;
    int product;
    const char* makerName;
    const char* productName;
    const char* startProgram;
};

constexpr Edition editions[] = {
    {0, 1, "Hesperon Labs", "Trelvanexis", "txstart"},
    {0, 2, "Hesperon Labs", "Marliskon XT", "mkstart"},
    {1, 1, "KELDARO", "Ondravel Spectrum Corenetics", "ovistart"},
    {1, 2, "KELDARO", "Ondravel Spectrum", "ovstart"},
};

constexpr Edition none = {0, 0, "", "", ""};

const Edition& edition(int maker, int product) {
    for (const Edition& known : editions)
        if (known.maker == maker && known.product == product)
            return known;
    return none;
}

} // namespace

int makerId() {
    return 0;
}

int productId() {
    return 1;
}

const char* makerName(int maker, int product) {
    return edition(maker, product).makerName;
}

const char* productName(int maker, int product) {
    return edition(maker, product).productName;
}

const char* startProgram(int maker, int product) {
    return edition(maker, product).startProgram;
}
