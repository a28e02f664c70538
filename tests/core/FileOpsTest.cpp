#include "core/FileOps.h"

#include "core/FileMove.h"
#include "support/FailingWrite.h"
#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

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

// Runs `work` in a child process that is killed (SIGKILL) by its own write after `budget` bytes.
void killedWhileWriting(size_t budget, const std::function<void(const WriteCall&)>& work) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        auto written = std::make_shared<size_t>(0);
        work([=](int fd, const void* data, size_t length) -> ssize_t {
            if (*written >= budget) raise(SIGKILL);
            const ssize_t done = systemWrite(fd, data, std::min(length, budget - *written));
            if (done > 0) *written += static_cast<size_t>(done);
            return done;
        });
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

// A process killed part-way through a write leaves the old file whole and nothing else: not a
// temporary file, not half a new file.
TEST(FileOpsTest, AWriterKilledPartWayLeavesNothingBehind) {
    test::ScratchMount other;
    const struct {
        const char* name;
        std::function<void(const std::string& folder, const WriteCall&)> write;
    } cases[] = {
        {"atomic write",
         [](const std::string& folder, const WriteCall& w) {
             writeAtomically(folder + "/library.plist", after, w);
         }},
        {"atomic file in pieces",
         [](const std::string& folder, const WriteCall& w) {
             AtomicFile file(folder + "/library.plist", w);
             file.append(after.substr(0, 2000));
             file.append(after.substr(2000));
             file.commit();
         }},
        {"new file", [](const std::string& folder,
                        const WriteCall& w) { writeNew(folder + "/fresh.png", after, w); }},
        {"move to another file system",
         [&other](const std::string& folder, const WriteCall& w) {
             if (other.ok())
                 moveNoReplace(writeFile(other.file("moving.png"), after), folder + "/moved.png",
                               w);
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir dir;
        writeFile(dir.file("library.plist"), before);
        killedWhileWriting(3000, [&](const WriteCall& w) { c.write(dir.str(), w); });
        EXPECT_EQ(namesIn(dir.str()), onlyTheFile);
        EXPECT_EQ(readFile(dir.file("library.plist")), before);
    }
}

// Leftovers of processes that are gone are removed; those of a running process stay.
TEST(FileOpsTest, RemovesOnlyTheLeftoversOfProcessesThatAreGone) {
    const pid_t gone = fork();
    if (gone == 0) _exit(0);
    waitpid(gone, nullptr, 0);
    const TempDir dir;
    const std::string dead = ".lumivale-" + std::to_string(gone) + "-7";
    const std::string alive = ".lumivale-" + std::to_string(getpid()) + "-7";
    for (const std::string& name :
         {dead, alive, std::string(".lumivale-x-1"), std::string("library.plist")})
        writeFile(dir.file(name), before);
    removeLeftovers(dir.str());
    EXPECT_EQ(namesIn(dir.str()), (std::set<std::string>{alive, ".lumivale-x-1", "library.plist"}));
}

} // namespace
} // namespace lumivale
