#pragma once

// The self-check: draws the made-up screenshots into a private folder tree, drives a fresh
// application model over them through reading, search, shelving, blurring, tidying, undo, the
// Trash, the locked area and folder handling, and writes a report of every check.

#include "app/AppModel.h"

#include <functional>
#include <string>

namespace lumivale {

namespace SelfTest {

struct Outcome {
    std::string report; // the report's text, as written to "selftest.txt"
    int failures = 0;
    double seconds = 0; // how long the run took
    Status written;     // whether the report was written
};

// Runs every check with its working files under `dir`, writes dir/selftest.txt atomically and
// removes the working files. `adjust` may replace services of the model (tests use it to break
// what a check names); by default everything is real, confined to `dir`.
Outcome run(const std::string& dir, const std::function<void(AppModel::Services&)>& adjust = {});

} // namespace SelfTest
} // namespace lumivale
