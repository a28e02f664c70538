#pragma once

#include <random>
#include <string>
#include <vector>

namespace lumivale::test {

// Texts made of pieces picked at random, the same ones for the same seed.
struct RandomText {
    std::vector<std::string> pieces;
    std::mt19937 random;

    std::string operator()(size_t count) {
        std::string out;
        for (size_t i = 0; i < count; ++i)
            out += pieces[random() % pieces.size()];
        return out;
    }
};

} // namespace lumivale::test
