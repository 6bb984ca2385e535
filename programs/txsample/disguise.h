// Other texts for the texts of a database, each of the same length. All are made known first; then each byte
// gets, behind what stands in front of it, another small letter or digit, in the order of the bytes that were
// there.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>

class Disguise {
public:
    // In names of files small letters come where their capitals would, in all other texts the other way
    // round.
    Disguise(bool ascapitals, std::uint32_t seed) : capitals(ascapitals), random(seed) {}

    void learn(std::string_view text);
    std::string of(std::string_view text); // one that was learnt; letters stay capital or small

private:
    struct Node {
        std::map<unsigned char, std::unique_ptr<Node>> behind; // by the byte without its case
        std::map<unsigned char, unsigned char> others;
    };
    unsigned char withoutCase(char byte) const;
    void choose(Node& node);

    bool capitals;
    std::mt19937 random;
    Node root;
};
