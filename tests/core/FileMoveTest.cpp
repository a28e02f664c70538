#include "core/FileMove.h"

#include "support/FailingWrite.h"
#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <tuple>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchMount;
using test::TempDir;
using test::writeFile;

// Bytes that differ from place to place, so a copy that drops or repeats a chunk shows.
std::string pattern(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 7919 + i / 4096) & 0xFF);
    return bytes;
}

TEST(FileMove, NeverReplacesAndAcrossFileSystemsMovesOnlyAWholeCopy) {
    ScratchMount other;
    if (!other.ok()) GTEST_SKIP() << other.why();
    enum class Target { free, file, danglingLink };
    using enum Target;
    const struct {
        const char* name;
        bool across;
        Target target;
        int expected = 0;         // 0: moves
        size_t budget = SIZE_MAX; // bytes written before writes fail
        int writeError = 0;       // what the failing write reports (0: it writes nothing)
    } cases[] = {
        {"moves", false, free},
        {"taken by a file", false, file, EEXIST},
        {"taken by a dangling link", false, danglingLink, EEXIST},
        {"moves across", true, free},
        {"across, taken by a file", true, file, EEXIST},
        {"across, taken by a dangling link", true, danglingLink, EEXIST},
        {"across, fails in the second chunk", true, free, EDQUOT, 1024 * 1024 + 100, EDQUOT},
        {"across, a write makes no progress", true, free, EIO, 4096},
    };
    const std::string bytes = pattern(3 * 1024 * 1024 + 17);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string from = writeFile(dir.file("shot.png"), bytes);
        const std::string folder = c.across ? other.file(c.name) : dir.file("out");
        const std::string to = folder + "/shot.png";
        fs::create_directories(folder);
        if (c.target == file) writeFile(to, "theirs");
        if (c.target == danglingLink) fs::create_symlink(dir.file("nowhere"), to);
        ASSERT_EQ(chmod(from.c_str(), 0640), 0);
        const timespec times[2] = {{1600000000, 0}, {1500000000, 123456789}};
        ASSERT_EQ(utimensat(AT_FDCWD, from.c_str(), times, 0), 0);
        // Older tmpfs kernels keep no user attributes; then the copy cannot be asked to keep them.
        const bool attributes = setxattr(from.c_str(), "user.test.mark", "1", 1, 0) == 0 &&
                                setxattr(folder.c_str(), "user.probe", "1", 1, 0) == 0;

        // Every write of a copy happens while the original is still there and before anything
        // new stands at the target's own name.
        int writes = 0, wrongMoments = 0;
        const WriteCall failing = test::failingAfter(c.budget, c.writeError);
        const Status moved = moveNoReplace(from, to, [&](int fd, const void* data, size_t length) {
            ++writes;
            if (!isTaken(from) || (c.target == free && isTaken(to))) ++wrongMoments;
            return failing(fd, data, length);
        });
        EXPECT_EQ(moved.code(), c.expected) << moved.message();
        EXPECT_EQ(moved.message().empty(), c.expected == 0);
        EXPECT_EQ(wrongMoments, 0);
        EXPECT_EQ(readFile(from), c.expected ? bytes : "");
        EXPECT_EQ(readFile(to), c.expected == 0 ? bytes : c.target == file ? "theirs" : "");
        EXPECT_EQ(fs::is_symlink(to), c.target == danglingLink);
        EXPECT_EQ(test::namesIn(folder).size(), c.expected && c.target == free ? 0u : 1u)
            << "no partial or temporary file";
        if (c.expected) continue;
        EXPECT_EQ(writes > 1, c.across) << "a rename within, a copy in pieces across";
        struct stat st {};
        ASSERT_EQ(stat(to.c_str(), &st), 0);
        EXPECT_EQ(std::tuple(st.st_mode & 07777, st.st_mtim.tv_sec, st.st_mtim.tv_nsec),
                  std::tuple(0640u, 1500000000L, 123456789L));
        EXPECT_TRUE(!attributes || getxattr(to.c_str(), "user.test.mark", nullptr, 0) == 1);
    }
}

} // namespace
} // namespace lumivale
