#include "platform/Trash.h"

#include "support/ChildRun.h"
#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using test::namesIn;
using test::readFile;
using test::ScratchMount;
using test::TempDir;
using test::writeFile;

// 20:00:05 UTC is 01:30:05 the next day in Kolkata, where the tests run.
const Date deletedAt = Date(sys_days(2026y / October / 31) + 20h + 5s);
const std::string awkwardName = "my shot 100% ü.png";

// Puts the file at `path`, named awkwardName, in the Trash; expects it in the Trash folder `root`
// as `landed`, with the info that trash-cli and file managers read: its path as `infoFolder` and
// its name percent-encoded, and the date in local time.
void expectTrashed(const std::string& path, const std::string& root, const std::string& landed,
                   const std::string& infoFolder) {
    const std::string bytes = readFile(path);
    const TrashOutcome outcome = Trash::put(path, deletedAt);
    ASSERT_TRUE(outcome.status.isOk()) << outcome.status.message();
    EXPECT_EQ(outcome.place, root + "/files/" + landed);
    EXPECT_EQ(readFile(root + "/files/" + landed), bytes);
    EXPECT_EQ(readFile(root + "/info/" + landed + ".trashinfo"),
              "[Trash Info]\nPath=" + infoFolder +
                  "my%20shot%20100%25%20%C3%BC.png\nDeletionDate=2026-11-01T01:30:05\n");
}

// Every test gets a Trash of its own.
class TrashTest : public ::testing::Test {
  protected:
    void SetUp() override { setenv("XDG_DATA_HOME", data.str().c_str(), 1); }

    TempDir data, work;
    const std::string trash = data.file("Trash");
};

TEST_F(TrashTest, PutMovesTheFileAndWritesItsInfoUnderAFreeName) {
    const std::string numbered = "my shot 100% ü 2.png", info = awkwardName + ".trashinfo";
    const struct {
        const char* name;
        std::vector<std::string> held; // what the Trash already holds
        std::string landed;
    } cases[] = {
        {"an empty Trash", {}, awkwardName},
        {"a file of that name", {"files/" + awkwardName, "info/" + info}, numbered},
        {"only an info of that name", {"info/" + info}, numbered},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(trash);
        for (const std::string& name : c.held)
            writeFile(trash + "/" + name, "older");
        expectTrashed(writeFile(work.file(awkwardName), "ours"), trash, c.landed, work.str() + "/");
        for (const std::string& name : c.held)
            EXPECT_EQ(readFile(trash + "/" + name), "older");
    }
}

TEST_F(TrashTest, AFileThatCannotGoLeavesNoInfo) {
    EXPECT_FALSE(Trash::put(work.file("absent.png"), deletedAt).status.isOk());
    EXPECT_TRUE(namesIn(trash + "/info").empty());

    // On a read-only disk the file cannot leave its folder: the copy in the home Trash and
    // the info are taken back.
    ScratchMount readOnly(ScratchMount::Where::ownMount, "size=1m");
    if (!readOnly.ok()) GTEST_SKIP() << readOnly.why();
    const std::string stuck = writeFile(readOnly.file("stuck.png"), "stuck");
    ASSERT_TRUE(readOnly.makeReadOnly());
    EXPECT_EQ(Trash::put(stuck, deletedAt).status.message(), "Read-only file system");
    EXPECT_EQ(readFile(stuck), "stuck");
    EXPECT_TRUE(namesIn(trash + "/info").empty());
    EXPECT_TRUE(namesIn(trash + "/files").empty());
}

TEST_F(TrashTest, AFileOnAnotherMountGoesToThatMountsTrash) {
    const std::string uid = std::to_string(getuid());
    const struct {
        const char* name;
        std::string sharedTrash; // the shell commands that make it at the mount's top
        std::string trashDir;    // relative to the mount's top
    } cases[] = {
        {"no shared Trash", "true", ".Trash-" + uid},
        {"sticky shared Trash", "mkdir -m 1777 .Trash", ".Trash/" + uid},
        {"shared Trash without the sticky bit", "mkdir -m 777 .Trash", ".Trash-" + uid},
        {"shared Trash that is a link", "mkdir -m 1777 real && ln -s real .Trash", ".Trash-" + uid},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScratchMount disk(ScratchMount::Where::ownMount);
        if (!disk.ok()) GTEST_SKIP() << disk.why();
        ASSERT_TRUE(test::runShell("cd '" + disk.path() + "' && " + c.sharedTrash));
        const std::string path = writeFile(disk.file("shots/" + awkwardName), "picture");
        expectTrashed(path, disk.file(c.trashDir), awkwardName, "shots/");
        EXPECT_EQ(fs::symlink_status(disk.file(c.trashDir)).permissions(), fs::perms::owner_all);
        EXPECT_NE(test::runShell("trash-list").value_or("").find("01:30:05 " + path + "\n"),
                  std::string::npos)
            << "trash-cli finds it";
    }
}

} // namespace
} // namespace lumivale
