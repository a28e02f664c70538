#include "core/FileMove.h"

#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

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

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Older tmpfs kernels keep no user attributes; the copy cannot be asked to keep them there.
bool supportsUserAttributes(const std::string& folder) {
    const std::string probe = writeFile(folder + "/.probe", "");
    const bool works = setxattr(probe.c_str(), "user.probe", "1", 1, 0) == 0;
    fs::remove(probe);
    return works;
}

TEST(FileMove, WithinOneFileSystemNeverReplaces) {
    enum class Target { free, file, danglingLink, missingFolder };
    struct Case {
        const char* name;
        bool sourceThere;
        Target target;
        int error; // 0: moves
    } cases[] = {
        {"moves", true, Target::free, 0},
        {"target taken by a file", true, Target::file, EEXIST},
        {"target taken by a dangling link", true, Target::danglingLink, EEXIST},
        {"target folder missing", true, Target::missingFolder, ENOENT},
        {"source missing", false, Target::free, ENOENT},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string from = dir.file("in/shot.png");
        std::string to = dir.file("out/shot.png");
        fs::create_directories(dir.file("in"));
        fs::create_directories(dir.file("out"));
        if (c.sourceThere) writeFile(from, "picture");
        if (c.target == Target::file) writeFile(to, "someone else's");
        if (c.target == Target::danglingLink) fs::create_symlink(dir.file("nowhere"), to);
        if (c.target == Target::missingFolder) to = dir.file("absent/shot.png");

        const Status moved = moveNoReplace(from, to);
        EXPECT_EQ(moved.code(), c.error) << moved.message();
        if (c.error == 0) {
            EXPECT_TRUE(moved.isOk());
            EXPECT_EQ(readFile(to), "picture");
            EXPECT_FALSE(fs::exists(from));
        } else {
            EXPECT_FALSE(moved.isOk());
            EXPECT_FALSE(moved.message().empty());
            EXPECT_EQ(readFile(from), c.sourceThere ? "picture" : "");
        }
        if (c.target == Target::file) {
            EXPECT_EQ(readFile(to), "someone else's");
        }
        if (c.target == Target::danglingLink) {
            EXPECT_TRUE(fs::is_symlink(to));
        }
    }
}

TEST(FileMove, IsTakenByAnythingAtThePath) {
    TempDir dir;
    writeFile(dir.file("file"), "x");
    fs::create_directories(dir.file("folder"));
    fs::create_symlink(dir.file("nowhere"), dir.file("dangling"));
    struct Case {
        std::string path;
        bool taken;
    } cases[] = {
        {dir.file("file"), true},
        {dir.file("folder"), true},
        {dir.file("dangling"), true},
        {dir.file("missing"), false},
        {dir.file("missing/inside"), false},
        {dir.file("file/inside"), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(isTaken(c.path), c.taken);
    }
}

TEST(FileMove, AcrossFileSystemsCopiesWholeThenRemovesTheOriginal) {
    ScratchMount other;
    if (!other.ok()) GTEST_SKIP() << other.why();
    TempDir dir;
    const std::string bytes = pattern(3 * 1024 * 1024 + 17);
    const std::string from = writeFile(dir.file("shot.png"), bytes);
    const std::string to = other.file("shot.png");
    ASSERT_EQ(chmod(from.c_str(), 0640), 0);
    const timespec times[2] = {{1600000000, 0}, {1500000000, 123456789}};
    ASSERT_EQ(utimensat(AT_FDCWD, from.c_str(), times, 0), 0);
    const bool attributes = setxattr(from.c_str(), "user.test.mark", "1", 1, 0) == 0 &&
                            supportsUserAttributes(other.path());

    // Every write of the copy happens while the original is still there and before anything
    // stands at the target's own name.
    int writes = 0, wrongMoments = 0;
    const WriteCall watching = [&](int fd, const void* data, size_t length) {
        ++writes;
        if (!isTaken(from) || isTaken(to)) ++wrongMoments;
        return systemWrite(fd, data, length);
    };
    const Status moved = moveNoReplace(from, to, watching);
    ASSERT_TRUE(moved.isOk()) << moved.message();
    EXPECT_GT(writes, 1);
    EXPECT_EQ(wrongMoments, 0);
    EXPECT_FALSE(fs::exists(from));
    EXPECT_EQ(readFile(to), bytes);
    EXPECT_EQ(namesIn(other.path()), std::vector<std::string>{"shot.png"});

    struct stat st {};
    ASSERT_EQ(stat(to.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(st.st_mtim.tv_sec, 1500000000);
    EXPECT_EQ(st.st_mtim.tv_nsec, 123456789);
    if (attributes) {
        char value[4] = {};
        EXPECT_EQ(getxattr(to.c_str(), "user.test.mark", value, sizeof value), 1);
        EXPECT_EQ(value[0], '1');
    }
}

TEST(FileMove, AcrossFileSystemsAFailedCopyLeavesNoTrace) {
    ScratchMount other;
    if (!other.ok()) GTEST_SKIP() << other.why();
    const size_t size = 2 * 1024 * 1024 + 5;
    struct Case {
        const char* name;
        ssize_t failAfter; // bytes written before writes fail; -1: never
        int error;         // what the failing write reports (0: it writes nothing)
        bool targetTaken;
        int expected;
    } cases[] = {
        {"first write fails", 0, ENOSPC, false, ENOSPC},
        {"fails in the second chunk", 1024 * 1024 + 100, EDQUOT, false, EDQUOT},
        {"write makes no progress", 4096, 0, false, EIO},
        {"target already taken", -1, 0, true, EEXIST},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string bytes = pattern(size);
        const std::string from = writeFile(dir.file("shot.png"), bytes);
        const std::string folder = other.file(std::string("case-") + std::to_string(&c - cases));
        fs::create_directories(folder);
        const std::string to = folder + "/shot.png";
        if (c.targetTaken) writeFile(to, "theirs");

        ssize_t written = 0;
        const WriteCall failing = [&](int fd, const void* data, size_t length) -> ssize_t {
            if (c.failAfter >= 0 && written + static_cast<ssize_t>(length) > c.failAfter) {
                const ssize_t part = c.failAfter - written;
                if (part > 0) {
                    written += part;
                    return systemWrite(fd, data, static_cast<size_t>(part));
                }
                errno = c.error;
                return c.error ? -1 : 0;
            }
            written += static_cast<ssize_t>(length);
            return systemWrite(fd, data, length);
        };
        const Status moved = moveNoReplace(from, to, failing);
        EXPECT_FALSE(moved.isOk());
        EXPECT_EQ(moved.code(), c.expected) << moved.message();
        EXPECT_FALSE(moved.message().empty());
        EXPECT_EQ(readFile(from), bytes);
        EXPECT_EQ(namesIn(folder), c.targetTaken ? std::vector<std::string>{"shot.png"}
                                                 : std::vector<std::string>{});
        if (c.targetTaken) {
            EXPECT_EQ(readFile(to), "theirs");
        }
    }
}

TEST(FileMove, AcrossFileSystemsIntoAFullDisk) {
    ScratchMount tiny(ScratchMount::Where::ownMount, "size=64k");
    if (!tiny.ok()) GTEST_SKIP() << tiny.why();
    TempDir dir;
    const std::string bytes = pattern(256 * 1024);
    const std::string from = writeFile(dir.file("big.png"), bytes);

    const Status moved = moveNoReplace(from, tiny.file("big.png"));
    EXPECT_EQ(moved.code(), ENOSPC) << moved.message();
    EXPECT_EQ(moved.message(), "No space left on device");
    EXPECT_EQ(readFile(from), bytes);
    EXPECT_TRUE(namesIn(tiny.path()).empty());

    // A file that fits still moves, so the failure above was the disk, not the mount.
    const std::string small = writeFile(dir.file("small.png"), "fits");
    EXPECT_TRUE(moveNoReplace(small, tiny.file("small.png")).isOk());
    EXPECT_EQ(readFile(tiny.file("small.png")), "fits");
}

TEST(FileMove, AcrossFileSystemsAnOriginalThatCannotGoKeepsNoCopy) {
    ScratchMount source(ScratchMount::Where::ownMount, "size=1m");
    if (!source.ok()) GTEST_SKIP() << source.why();
    const std::string from = writeFile(source.file("shot.png"), "picture");
    ASSERT_TRUE(source.makeReadOnly());
    TempDir dir;
    const std::string to = dir.file("shot.png");

    const Status moved = moveNoReplace(from, to);
    EXPECT_EQ(moved.code(), EROFS) << moved.message();
    EXPECT_EQ(readFile(from), "picture");
    EXPECT_TRUE(namesIn(dir.str()).empty());
}

} // namespace
} // namespace lumivale
