// txinspect: the desktop tool.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "app/application.h"
#include "platform/system/standardstreams.h"

namespace {

constexpr const char* help =
    "txinspect inspects and repairs a database of laboratory experiments in a window.\n"
    "It takes no arguments: txstart chooses the database and starts it. txcheck does the same work\n"
    "without a window.\n\n"
    "      --help       Print this help and leave\n"
    "      --version    Print the version and leave";

bool tellsOnly(int argc, char** argv) {
    const auto given = [&](const char* option) {
        return std::any_of(argv + 1, argv + argc,
                           [option](const char* word) { return std::strcmp(word, option) == 0; });
    };
    const bool helps = given("--help") || given("-h");
    if (helps || given("--version"))
        std::puts(helps ? help : "txinspect " TX_VERSION);
    return helps || given("--version");
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    if (tellsOnly(argc, argv))
        return 0;
    return AfxWinMain(argc, argv, []() -> CWinApp& {
        static TSXapp application;
        return application;
    });
}
