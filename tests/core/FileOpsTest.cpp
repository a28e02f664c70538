#include "core/FileOps.h"

#include "support/FailingWrite.h"
#include "support/TempDir.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using test::namesIn;
using test::readFile;
using test::TempDir;
using test::writeFile;

const std::string before = "the old contents";
const std::string after(5000, 'n');
const std::set<std::string> onlyTheFile = {"library.plist"};

TEST(FileOpsTest, WritesReplaceTheFileOrLeaveItWhole) {
    for (size_t budget : {size_t{0}, size_t{1}, size_t{1000}, after.size() - 1, after.size()}) {
        SCOPED_TRACE(budget);
        const bool fits = budget == after.size();
        // "No space left" after `budget` bytes, in short writes until then.
        const auto failing = [budget] { return test::failingAfter(budget, ENOSPC, 1000); };
        const TempDir dir;
        const std::string file = writeFile(dir.file("library.plist"), before);
        EXPECT_EQ(writeAtomically(file, after, failing()).code(), fits ? 0 : ENOSPC);
        EXPECT_EQ(readFile(file), fits ? after : before);
        EXPECT_EQ(namesIn(dir.str()), onlyTheFile);
        // New files, one in folders still to be made: whole, or nothing at all.
        EXPECT_EQ(writeAtomically(dir.file("a/b/new"), after, failing()).isOk(), fits);
        EXPECT_EQ(namesIn(dir.file("a/b")).size(), fits ? 1u : 0u) << "no temporary left";
        EXPECT_EQ(writeNew(dir.file("fresh"), after, failing()).isOk(), fits);
        EXPECT_EQ(fs::exists(dir.file("fresh")), fits);
    }
}

// A file written in pieces that lost one must not be committed, even if later pieces go through.
TEST(FileOpsTest, AnAtomicFileKeepsItsFirstFailure) {
    const TempDir dir;
    const std::string file = writeFile(dir.file("library.plist"), before);
    bool diskFull = false;
    {
        AtomicFile out(file, [&](int fd, const void* data, size_t length) -> ssize_t {
            if (!diskFull) return systemWrite(fd, data, length);
            errno = ENOSPC;
            return -1;
        });
        EXPECT_TRUE(out.append(after));
        diskFull = true;
        EXPECT_EQ(out.append(after).code(), ENOSPC);
        diskFull = false;
        EXPECT_EQ(out.append(after).code(), ENOSPC);
        EXPECT_EQ(out.commit().code(), ENOSPC);
    }
    EXPECT_EQ(readFile(file), before);
    EXPECT_EQ(namesIn(dir.str()), onlyTheFile);
}

} // namespace
} // namespace lumivale
