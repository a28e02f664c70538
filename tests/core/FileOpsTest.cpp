#include "core/FileOps.h"

#include "support/TempDir.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

using namespace lumivale;
namespace fs = std::filesystem;

namespace {

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

// A write(2) that gives out after `budget` bytes with "no space left", writing in small pieces
// until then as a real file system may.
WriteCall failingAfter(size_t budget) {
    auto written = std::make_shared<size_t>(0);
    return [written, budget](int fd, const void* data, size_t length) -> ssize_t {
        if (*written >= budget) {
            errno = ENOSPC;
            return -1;
        }
        const size_t n = std::min({length, budget - *written, size_t{1000}});
        const ssize_t done = systemWrite(fd, data, n);
        if (done > 0) *written += static_cast<size_t>(done);
        return done;
    };
}

const std::string before = "the old contents";
const std::string after(5000, 'n');

TEST(FileOpsTest, WriteAtomicallyReplacesTheFile) {
    const test::TempDir dir;
    const std::string file = test::writeFile(dir.file("library.plist"), before);
    ASSERT_TRUE(writeAtomically(file, after));
    EXPECT_EQ(test::readFile(file), after);
    EXPECT_EQ(namesIn(dir.str()), std::set<std::string>{"library.plist"});

    ASSERT_TRUE(writeAtomically(file, after, failingAfter(after.size()))) << "short writes add up";
    EXPECT_EQ(test::readFile(file), after);
}

TEST(FileOpsTest, WriteAtomicallyMakesTheFolders) {
    const test::TempDir dir;
    const std::string file = dir.file("a/b/c/library.plist");
    ASSERT_TRUE(writeAtomically(file, after));
    EXPECT_EQ(test::readFile(file), after);
}

TEST(FileOpsTest, AFailedAtomicWriteLeavesTheOldFileAndNoTemporary) {
    for (size_t budget : {size_t{0}, size_t{1}, size_t{1000}, after.size() - 1}) {
        SCOPED_TRACE(budget);
        const test::TempDir dir;
        const std::string file = test::writeFile(dir.file("library.plist"), before);
        const Status status = writeAtomically(file, after, failingAfter(budget));
        EXPECT_FALSE(status);
        EXPECT_EQ(status.code(), ENOSPC);
        EXPECT_FALSE(status.message().empty());
        EXPECT_EQ(test::readFile(file), before);
        EXPECT_EQ(namesIn(dir.str()), std::set<std::string>{"library.plist"});
    }
}

TEST(FileOpsTest, AFailedAtomicWriteOfANewFileLeavesNothing) {
    const test::TempDir dir;
    EXPECT_FALSE(writeAtomically(dir.file("library.plist"), after, failingAfter(10)));
    EXPECT_TRUE(namesIn(dir.str()).empty());
}

TEST(FileOpsTest, AnAtomicFileWrittenInPiecesReplacesTheFileOnCommit) {
    const test::TempDir dir;
    const std::string file = test::writeFile(dir.file("library.plist"), before);
    {
        AtomicFile out(file);
        for (int i = 0; i < 5; ++i)
            ASSERT_TRUE(out.append(after));
        EXPECT_EQ(test::readFile(file), before) << "untouched until committed";
        ASSERT_TRUE(out.commit());
    }
    EXPECT_EQ(test::readFile(file), after + after + after + after + after);
    EXPECT_EQ(namesIn(dir.str()), std::set<std::string>{"library.plist"});
}

TEST(FileOpsTest, AnAtomicFileThatFailsOrIsAbandonedLeavesTheOldFile) {
    const test::TempDir dir;
    const std::string file = test::writeFile(dir.file("library.plist"), before);
    {
        AtomicFile out(file, failingAfter(2 * after.size() + 10));
        EXPECT_TRUE(out.append(after));
        EXPECT_TRUE(out.append(after));
        EXPECT_EQ(out.append(after).code(), ENOSPC);
        EXPECT_EQ(out.append("more").code(), ENOSPC) << "the first failure stays";
        EXPECT_EQ(out.commit().code(), ENOSPC);
    }
    EXPECT_EQ(test::readFile(file), before);
    EXPECT_EQ(namesIn(dir.str()), std::set<std::string>{"library.plist"});
    {
        AtomicFile out(file);
        EXPECT_TRUE(out.append(after));
    }
    EXPECT_EQ(test::readFile(file), before) << "never committed";
    EXPECT_EQ(namesIn(dir.str()), std::set<std::string>{"library.plist"});
}

TEST(FileOpsTest, WriteNewRefusesAnExistingFile) {
    const test::TempDir dir;
    const std::string file = test::writeFile(dir.file("journal.plist"), before);
    const Status status = writeNew(file, after);
    EXPECT_FALSE(status);
    EXPECT_EQ(status.code(), EEXIST);
    EXPECT_EQ(test::readFile(file), before);

    ASSERT_TRUE(writeNew(dir.file("fresh.plist"), after));
    EXPECT_EQ(test::readFile(dir.file("fresh.plist")), after);
}

TEST(FileOpsTest, AFailedNewWriteLeavesNothing) {
    for (size_t budget : {size_t{0}, size_t{1}, after.size() - 1}) {
        SCOPED_TRACE(budget);
        const test::TempDir dir;
        EXPECT_FALSE(writeNew(dir.file("fresh.plist"), after, failingAfter(budget)));
        EXPECT_TRUE(namesIn(dir.str()).empty());
    }
}

TEST(FileOpsTest, WritesIntoAFolderWithoutPermissionFail) {
    if (test::runningAsRoot()) GTEST_SKIP() << "permissions do not hold for root";
    const test::TempDir dir;
    const std::string folder = dir.file("locked");
    fs::create_directories(folder);
    const std::string file = test::writeFile(folder + "/library.plist", before);
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec,
                    fs::perm_options::replace);
    EXPECT_FALSE(writeAtomically(file, after));
    EXPECT_FALSE(writeNew(folder + "/other.plist", after));
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::replace);
    EXPECT_EQ(test::readFile(file), before);
    EXPECT_EQ(namesIn(folder), std::set<std::string>{"library.plist"});
}

} // namespace
