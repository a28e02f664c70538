// The shared main of every test program: each run gets a private home, so no test can touch
// the real one, and runs in a non-UTC time zone with a UTF-8 locale.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    // Recognition must run with one OpenMP thread, as in the program; the runtime reads the
    // limit only when the program loads, so the test program starts again with it set.
    if (const char* limit = std::getenv("OMP_THREAD_LIMIT"); !limit || std::string(limit) != "1") {
        setenv("OMP_THREAD_LIMIT", "1", 1);
        execv("/proc/self/exe", argv);
    }
    std::string root = fs::temp_directory_path().string() + "/lumivale-test-XXXXXX";
    if (!mkdtemp(root.data()))
        return 2;
    const fs::path home = fs::path(root) / "home";
    for (const char* sub : {"", ".config", ".local/share", ".cache", ".local/state", "data", "run"})
        fs::create_directories(home / sub);
    fs::permissions(home / "run", fs::perms::owner_all, fs::perm_options::replace);
    setenv("LUMIVALE_TEST_ROOT", root.c_str(), 1);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home / ".config").c_str(), 1);
    setenv("XDG_DATA_HOME", (home / ".local/share").c_str(), 1);
    setenv("XDG_CACHE_HOME", (home / ".cache").c_str(), 1);
    setenv("XDG_STATE_HOME", (home / ".local/state").c_str(), 1);
    setenv("LUMIVALE_DATA_DIR", (home / "data").c_str(), 1);
    if (!std::getenv("XDG_RUNTIME_DIR"))
        setenv("XDG_RUNTIME_DIR", (home / "run").c_str(), 1);
    if (!std::getenv("TZ") || std::string(std::getenv("TZ")).empty() || std::string(std::getenv("TZ")) == "UTC")
        setenv("TZ", "Asia/Kolkata", 1);
    tzset();
    setenv("LC_ALL", "C.UTF-8", 0);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    std::setlocale(LC_ALL, "C.UTF-8");

    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::error_code ec;
    fs::remove_all(root, ec);
    return result;
}
