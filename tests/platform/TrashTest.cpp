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
using test::readFile;
using test::ScratchMount;
using test::TempDir;
using test::writeFile;

// 20:00:05 UTC is 01:30:05 the next day in Kolkata, where the tests run.
const Date deletedAt = Date(sys_days(2026y / October / 31) + 20h + 5s);
const char* const deletedLocal = "2026-11-01T01:30:05";
const std::string awkwardName = "my shot 100% ü.png";
const std::string uid = std::to_string(getuid());

// The .trashinfo of a file named awkwardName in this folder, as trash-cli and file managers
// read it: the path percent-encoded, the date in local time.
std::string infoText(const std::string& folder) {
    return "[Trash Info]\nPath=" + folder +
           "my%20shot%20100%25%20%C3%BC.png\nDeletionDate=" + deletedLocal + "\n";
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
        const std::string path = writeFile(work.file(awkwardName), "ours");

        const TrashOutcome outcome = Trash::put(path, deletedAt);
        ASSERT_TRUE(outcome.status.isOk()) << outcome.status.message();
        EXPECT_FALSE(fs::exists(path));
        EXPECT_EQ(outcome.place, trash + "/files/" + c.landed);
        EXPECT_EQ(readFile(trash + "/files/" + c.landed), "ours");
        EXPECT_EQ(readFile(trash + "/info/" + c.landed + ".trashinfo"), infoText(work.str() + "/"));
        for (const std::string& name : c.held)
            EXPECT_EQ(readFile(trash + "/" + name), "older");
    }
}

TEST_F(TrashTest, AFileThatCannotGoLeavesNoInfo) {
    EXPECT_FALSE(Trash::put(work.file("absent.png"), deletedAt).status.isOk());
    EXPECT_TRUE(test::namesIn(trash + "/info").empty());

    // On a read-only disk the file cannot leave its folder: the copy in the home Trash and
    // the info are taken back.
    ScratchMount readOnly(ScratchMount::Where::ownMount, "size=1m");
    if (!readOnly.ok()) GTEST_SKIP() << readOnly.why();
    const std::string stuck = writeFile(readOnly.file("stuck.png"), "stuck");
    ASSERT_TRUE(readOnly.makeReadOnly());
    const TrashOutcome refused = Trash::put(stuck, deletedAt);
    EXPECT_FALSE(refused.status.isOk());
    EXPECT_EQ(refused.status.message(), "Read-only file system");
    EXPECT_EQ(readFile(stuck), "stuck");
    EXPECT_TRUE(test::namesIn(trash + "/info").empty());
    EXPECT_TRUE(test::namesIn(trash + "/files").empty());
}

TEST_F(TrashTest, AFileOnAnotherMountGoesToThatMountsTrash) {
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

        const TrashOutcome outcome = Trash::put(path, deletedAt);
        ASSERT_TRUE(outcome.status.isOk()) << outcome.status.message();
        const std::string root = disk.file(c.trashDir);
        EXPECT_EQ(outcome.place, root + "/files/" + awkwardName);
        EXPECT_EQ(readFile(root + "/files/" + awkwardName), "picture");
        EXPECT_EQ(readFile(root + "/info/" + awkwardName + ".trashinfo"), infoText("shots/"));
        EXPECT_TRUE(test::namesIn(trash + "/files").empty()) << "nothing crossed to the home Trash";
        EXPECT_NE(test::runShell("trash-list").value_or("").find("01:30:05 " + path + "\n"),
                  std::string::npos)
            << "trash-cli finds it";
        EXPECT_EQ(fs::symlink_status(root).permissions(), fs::perms::owner_all);
    }
}

} // namespace
} // namespace lumivale
