#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumivale::test {

// How to run a test in a process of its own: with a wrapper command before the test program
// (a script that sets up a service), with variables added to its environment, for at most
// `timeout`. A test needs this when the setting must be there from the process's start
// (LD_PRELOAD) or when a library keeps per-process connections (D-Bus buses).
struct ChildSetup {
    std::string name; // marks the child, so that it runs the test body itself
    std::vector<std::string> wrapper;
    std::vector<std::pair<std::string, std::string>> env;
    std::chrono::seconds timeout{60};
};

// True in the child, which then runs the test body. In the parent, runs the current test again
// in a child made as `setup` says, adds a failure to the test when the child fails or
// overruns its time (killing it), and gives false.
bool runsInChild(const ChildSetup& setup);

// Permissions do not hold for root: true where the test body may run, as an ordinary user or in
// a child run again as root without the power to read and write every file; false in a root
// parent, after running that child.
bool runsUnprivileged();

// Runs a shell command; its standard output, or nothing when it exits with a failure.
std::optional<std::string> runShell(const std::string& command);

} // namespace lumivale::test
