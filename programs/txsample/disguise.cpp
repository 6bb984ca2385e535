#include "disguise.h"

#include <algorithm>
#include <cctype>

#include "platform/system/letters.h"

namespace {

// Ascending in both orders. Letters and digits serve nearly always; what has more followers takes the rest.
std::string alphabetFor(std::size_t count) {
    std::string alphabet = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (int byte = 0x80; alphabet.size() < count && byte <= 0xFF; ++byte)
        alphabet.push_back(static_cast<char>(byte));
    return alphabet;
}

bool isCapital(char byte) {
    return byte >= 'A' && byte <= 'Z';
}

} // namespace

unsigned char Disguise::withoutCase(char byte) const {
    const unsigned char small = smallLetter(byte);
    return capitals && small >= 'a' && small <= 'z' ? static_cast<unsigned char>(small - 32) : small;
}

void Disguise::learn(std::string_view text) {
    Node* node = &root;
    for (const char byte : text) {
        std::unique_ptr<Node>& next = node->behind[withoutCase(byte)];
        if (!next)
            next = std::make_unique<Node>();
        node = next.get();
    }
}

// As many bytes as have to be told apart, at random, in their order. Where there are too many, each is its
// own.
void Disguise::choose(Node& node) {
    std::string chosen = alphabetFor(node.behind.size());
    std::shuffle(chosen.begin(), chosen.end(), random);
    const bool enough = chosen.size() >= node.behind.size();
    chosen.resize(std::min(chosen.size(), node.behind.size()));
    std::sort(chosen.begin(), chosen.end(),
              [](char a, char b) { return static_cast<unsigned char>(a) < static_cast<unsigned char>(b); });
    std::size_t next = 0;
    for (const auto& [byte, rest] : node.behind)
        node.others[byte] = enough ? static_cast<unsigned char>(chosen[next++]) : byte;
}

std::string Disguise::of(std::string_view text) {
    std::string other;
    Node* node = &root;
    for (const char byte : text) {
        const unsigned char key = withoutCase(byte);
        if (node->others.empty())
            choose(*node);
        const auto chosen = static_cast<char>(node->others[key]);
        other.push_back(isCapital(byte) && chosen >= 'a' && chosen <= 'z' ? static_cast<char>(chosen - 32)
                                                                          : chosen);
        node = node->behind[key].get();
    }
    return other;
}
