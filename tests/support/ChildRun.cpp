#include "support/ChildRun.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lumivale::test {
namespace {

constexpr const char* marker = "LUMIVALE_TEST_CHILD";

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

} // namespace

bool runsInChild(const ChildSetup& setup) {
    const char* mark = std::getenv(marker);
    if (mark && setup.name == mark) return true;

    // timeout runs the child in a process group of its own, so an overrun stops all it started.
    std::string command = "timeout -k 5 " + std::to_string(setup.timeout.count()) + " env " +
                          quoted(std::string(marker) + "=" + setup.name);
    for (const auto& [key, value] : setup.env)
        command += " " + quoted(key + "=" + value);
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::vector<std::string> args = setup.wrapper;
    args.push_back(std::filesystem::read_symlink("/proc/self/exe").string());
    args.push_back(std::string("--gtest_filter=") + info->test_suite_name() + "." + info->name());
    for (const std::string& arg : args)
        command += " " + quoted(arg);
    const int status = std::system(command.c_str());
    const int exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    EXPECT_EQ(exit, 0) << "the child run (" << setup.name << ") "
                       << (exit == 124 ? "overran its time and was stopped" : "failed")
                       << "; its output is above";
    return false;
}

bool runsUnprivileged() {
    // Root stays root, without its power over every file: a user switch would need every folder
    // on the way to the test program open to that user, which a private clone is not.
    const std::string dropped = "-dac_override,-dac_read_search";
    return geteuid() != 0 ||
           runsInChild(
               {"unprivileged", {"setpriv", "--inh-caps=" + dropped, "--bounding-set=" + dropped}});
}

std::optional<std::string> runShell(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return std::nullopt;
    std::string output;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        output.append(buffer, n);
    const int status = pclose(pipe);
    if (status == -1 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
    return output;
}

} // namespace lumivale::test
