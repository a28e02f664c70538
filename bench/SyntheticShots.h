#pragma once

// A large made-up library for the benchmarks: read shots of 20 lines of about 40 characters,
// with numbers and accented words in several languages, some words common and some rare.

#include "core/Library.h"

#include <random>
#include <string>

namespace lumivale::bench {

inline std::string lineText(std::mt19937& random) {
    static const char* words[] = {"Rechnung", "Überweisung", "Größe",   "número",      "señor", "reçu",
                                  "café",     "paiement",    "Gesamt",  "total",       "EUR",   "Kreditkarte",
                                  "déjà",     "Straße",      "Zürich",  "ticket",      "mañana", "Århus",
                                  "crème",    "invoice",     "booking", "Bestätigung", "delivery", "gate"};
    std::string text;
    while (text.size() < 40) {
        if (!text.empty())
            text += ' ';
        if (random() % 3 == 0)
            text += std::to_string(random() % 100000) + "," + std::to_string(10 + random() % 90);
        else if (random() % 200 == 0)
            text += "zebra" + std::to_string(random() % 50); // rare words
        else
            text += words[random() % std::size(words)];
    }
    return text;
}

// `count` read shots, the same ones for the same seed.
inline Library syntheticLibrary(int count, unsigned seed = 42) {
    std::mt19937 random(seed);
    const Date base = now();
    Library library;
    library.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        const Date when = base - std::chrono::seconds(i * 37);
        Shot shot("/home/me/Pictures/Screenshots/Screenshot " + std::to_string(i) + ".png",
                  200000 + random() % 800000, when, when);
        std::vector<TextLine> lines;
        for (int l = 0; l < 20; ++l)
            lines.push_back({lineText(random), 0.05f, 1.0f - static_cast<float>(l) * 0.045f, 0.6f, 0.02f});
        shot.setLines(std::move(lines));
        shot.pixelWidth = 1170;
        shot.pixelHeight = 2532;
        shot.guess = allShelves[random() % allShelves.size()];
        shot.guessScore = 0.5;
        shot.readAt = base;
        shot.reader = 1;
        library.put(std::move(shot));
    }
    return library;
}

} // namespace lumivale::bench
