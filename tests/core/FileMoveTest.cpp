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

TEST(FileMove, WithinOneFileSystemNeverReplaces) {
    enum class Target { free, file, danglingLink };
    using enum Target;
    const struct {
        const char* name;
        bool sourceThere;
        Target target;
        int error; // 0: moves
        std::string atTarget;
    } cases[] = {
        {"moves", true, free, 0, "picture"},
        {"target taken by a file", true, file, EEXIST, "someone else's"},
        {"target taken by a dangling link", true, danglingLink, EEXIST, ""},
        {"source missing", false, free, ENOENT, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string from = dir.file("shot.png"), to = dir.file("out.png");
        if (c.sourceThere) writeFile(from, "picture");
        if (c.target == file) writeFile(to, "someone else's");
        if (c.target == danglingLink) fs::create_symlink(dir.file("nowhere"), to);
        EXPECT_EQ(isTaken(to), c.target != free);

        const Status moved = moveNoReplace(from, to);
        EXPECT_EQ(moved.code(), c.error) << moved.message();
        EXPECT_EQ(moved.message().empty(), c.error == 0);
        EXPECT_EQ(readFile(from), c.sourceThere && c.error ? "picture" : "");
        EXPECT_EQ(readFile(to), c.atTarget);
        EXPECT_EQ(fs::is_symlink(to), c.target == danglingLink);
    }
}

TEST(FileMove, AcrossFileSystemsMovesOnlyAWholeCopyAndNeverReplaces) {
    ScratchMount other;
    if (!other.ok()) GTEST_SKIP() << other.why();
    const struct {
        const char* name;
        size_t budget; // bytes written before writes fail
        int error;     // what the failing write reports (0: it writes nothing)
        bool targetTaken;
        int expected; // 0: moves
    } cases[] = {
        {"moves", SIZE_MAX, 0, false, 0},
        {"fails in the second chunk", 1024 * 1024 + 100, EDQUOT, false, EDQUOT},
        {"write makes no progress", 4096, 0, false, EIO},
        {"target already taken", SIZE_MAX, 0, true, EEXIST},
    };
    const std::string bytes = pattern(3 * 1024 * 1024 + 17);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string from = writeFile(dir.file("shot.png"), bytes);
        const std::string folder = other.file(c.name), to = folder + "/shot.png";
        fs::create_directories(folder);
        if (c.targetTaken) writeFile(to, "theirs");
        ASSERT_EQ(chmod(from.c_str(), 0640), 0);
        const timespec times[2] = {{1600000000, 0}, {1500000000, 123456789}};
        ASSERT_EQ(utimensat(AT_FDCWD, from.c_str(), times, 0), 0);
        // Older tmpfs kernels keep no user attributes; then the copy cannot be asked to keep them.
        const bool attributes = setxattr(from.c_str(), "user.test.mark", "1", 1, 0) == 0 &&
                                setxattr(folder.c_str(), "user.probe", "1", 1, 0) == 0;

        // Every write of the copy happens while the original is still there and before anything
        // new stands at the target's own name.
        int writes = 0, wrongMoments = 0;
        const WriteCall failing = test::failingAfter(c.budget, c.error);
        const Status moved = moveNoReplace(from, to, [&](int fd, const void* data, size_t length) {
            ++writes;
            if (!isTaken(from) || (!c.targetTaken && isTaken(to))) ++wrongMoments;
            return failing(fd, data, length);
        });
        EXPECT_EQ(moved.code(), c.expected) << moved.message();
        EXPECT_EQ(moved.message().empty(), c.expected == 0);
        EXPECT_EQ(wrongMoments, 0);
        EXPECT_EQ(readFile(from), c.expected ? bytes : "");
        EXPECT_EQ(readFile(to), c.expected == 0 ? bytes : c.targetTaken ? "theirs" : "");
        EXPECT_EQ(test::namesIn(folder).size(), c.expected && !c.targetTaken ? 0u : 1u)
            << "no partial or temporary file";
        if (c.expected) continue;
        EXPECT_GT(writes, 1);
        struct stat st {};
        ASSERT_EQ(stat(to.c_str(), &st), 0);
        EXPECT_EQ(std::tuple(st.st_mode & 07777, st.st_mtim.tv_sec, st.st_mtim.tv_nsec),
                  std::tuple(0640u, 1500000000L, 123456789L));
        EXPECT_TRUE(!attributes || getxattr(to.c_str(), "user.test.mark", nullptr, 0) == 1);
    }
}

TEST(FileMove, AcrossFileSystemsAnOriginalThatCannotBeRemovedKeepsNoCopy) {
    ScratchMount source(ScratchMount::Where::ownMount, "size=1m");
    if (!source.ok()) GTEST_SKIP() << source.why();
    const std::string from = writeFile(source.file("shot.png"), "picture");
    ASSERT_TRUE(source.makeReadOnly());
    TempDir dir;
    EXPECT_EQ(moveNoReplace(from, dir.file("shot.png")).code(), EROFS);
    EXPECT_EQ(readFile(from), "picture");
    EXPECT_EQ(test::namesIn(dir.str()).size(), 0u);
}

} // namespace
} // namespace lumivale
