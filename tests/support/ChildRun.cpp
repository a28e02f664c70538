#include "support/ChildRun.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace lumivale::test {
namespace {

constexpr const char* marker = "LUMIVALE_TEST_CHILD";

std::vector<std::string> childEnvironment(const ChildSetup& setup) {
    std::map<std::string, std::string> vars;
    for (char** e = environ; *e; ++e) {
        const std::string entry(*e);
        const auto eq = entry.find('=');
        if (eq != std::string::npos) vars[entry.substr(0, eq)] = entry.substr(eq + 1);
    }
    for (const auto& [key, value] : setup.env)
        vars[key] = value;
    vars[marker] = setup.name;
    std::vector<std::string> out;
    for (const auto& [key, value] : vars)
        out.push_back(key + "=" + value);
    return out;
}

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> out;
    for (auto& s : strings)
        out.push_back(s.data());
    out.push_back(nullptr);
    return out;
}

} // namespace

bool runsInChild(const ChildSetup& setup) {
    const char* mark = std::getenv(marker);
    if (mark && setup.name == mark) return true;

    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::vector<std::string> args = setup.wrapper;
    args.push_back(std::filesystem::read_symlink("/proc/self/exe").string());
    args.push_back(std::string("--gtest_filter=") + info->test_suite_name() + "." + info->name());
    std::vector<std::string> env = childEnvironment(setup);
    auto argv = pointers(args);
    auto envp = pointers(env);

    // The child leads a process group of its own, so an overrun kills everything it started.
    posix_spawnattr_t attr;
    posix_spawnattr_init(&attr);
    posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attr, 0);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, argv[0], nullptr, &attr, argv.data(), envp.data());
    posix_spawnattr_destroy(&attr);
    if (spawned != 0) {
        ADD_FAILURE() << "could not start " << args[0] << ": " << std::strerror(spawned);
        return false;
    }

    const auto deadline = std::chrono::steady_clock::now() + setup.timeout;
    int status = 0;
    for (;;) {
        const pid_t done = waitpid(pid, &status, WNOHANG);
        if (done == pid) break;
        if (done < 0 && errno != EINTR) {
            ADD_FAILURE() << "lost the child process: " << std::strerror(errno);
            return false;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            kill(-pid, SIGKILL);
            waitpid(pid, &status, 0);
            ADD_FAILURE() << "the child run (" << setup.name << ") took longer than "
                          << setup.timeout.count() << " s and was stopped";
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << "the child run (" << setup.name << ") failed; its output is above";
    return false;
}

} // namespace lumivale::test
