#include "core/FileOps.h"

#include "support/ChildRun.h"
#include "support/FailingWrite.h"
#include "support/TempDir.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

using namespace lumivale;
namespace fs = std::filesystem;

namespace {

// Gives out with "no space left" after `budget` bytes, in small pieces until then.
WriteCall failingAfter(size_t budget) {
    return test::failingAfter(budget, ENOSPC, 1000);
}

const std::string before = "the old contents";
const std::string after(5000, 'n');
const std::set<std::string> onlyTheFile = {"library.plist"};

TEST(FileOpsTest, WritesReplaceTheFileOrLeaveItWhole) {
    for (size_t budget : {size_t{0}, size_t{1}, size_t{1000}, after.size() - 1, after.size()}) {
        SCOPED_TRACE(budget);
        const bool fits = budget == after.size();
        const test::TempDir dir;
        const std::string file = test::writeFile(dir.file("library.plist"), before);
        const Status status = writeAtomically(file, after, failingAfter(budget));
        EXPECT_EQ(status.code(), fits ? 0 : ENOSPC) << "short writes add up";
        EXPECT_EQ(writeNew(file, before + before).code(), EEXIST);
        EXPECT_EQ(test::readFile(file), fits ? after : before);
        EXPECT_EQ(test::namesIn(dir.str()), onlyTheFile);
        // New files, one in folders still to be made: whole, or nothing at all.
        EXPECT_EQ(writeAtomically(dir.file("a/b/new"), after, failingAfter(budget)).isOk(), fits);
        EXPECT_EQ(test::namesIn(dir.file("a/b")).size(), fits ? 1u : 0u) << "no temporary left";
        EXPECT_EQ(writeNew(dir.file("fresh"), after, failingAfter(budget)).isOk(), fits);
        EXPECT_EQ(fs::exists(dir.file("fresh")), fits);
    }
}

TEST(FileOpsTest, AnAtomicFileReplacesOnlyOnCommit) {
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
    {
        AtomicFile abandoned(file);
        EXPECT_TRUE(abandoned.append(after));
    }
    EXPECT_EQ(test::readFile(file), before);
    EXPECT_EQ(test::namesIn(dir.str()), onlyTheFile);
    {
        AtomicFile out(file);
        ASSERT_TRUE(out.append(after));
        ASSERT_TRUE(out.append(before));
        EXPECT_EQ(test::readFile(file), before) << "untouched until committed";
        ASSERT_TRUE(out.commit());
    }
    EXPECT_EQ(test::readFile(file), after + before);
    EXPECT_EQ(test::namesIn(dir.str()), onlyTheFile);
}

TEST(FileOpsTest, NothingIsOverwrittenOrLeftInAFolderThatRefuses) {
    if (!test::runsUnprivileged()) return;
    const test::TempDir dir;
    const std::string file = test::writeFile(dir.file("journal.plist"), before);
    fs::permissions(dir.str(), fs::perms::owner_read | fs::perms::owner_exec,
                    fs::perm_options::replace);
    EXPECT_FALSE(writeAtomically(file, after));
    EXPECT_FALSE(writeNew(dir.file("other.plist"), after));
    fs::permissions(dir.str(), fs::perms::owner_all, fs::perm_options::replace);
    EXPECT_EQ(test::readFile(file), before);
    EXPECT_EQ(test::namesIn(dir.str()), std::set<std::string>{"journal.plist"});
}

} // namespace
