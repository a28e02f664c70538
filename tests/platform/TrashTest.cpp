#include "platform/Trash.h"

#include "support/ChildRun.h"
#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <sys/stat.h>
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

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    if (fs::is_directory(folder))
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string infoText(const std::string& path) {
    return "[Trash Info]\nPath=" + Trash::encodePath(path) + "\nDeletionDate=" + deletedLocal +
           "\n";
}

// Every test gets a Trash of its own.
class TrashTest : public ::testing::Test {
  protected:
    void SetUp() override { setenv("XDG_DATA_HOME", data.str().c_str(), 1); }

    TempDir data, work;
    const std::string trash = data.file("Trash");
};

const bool haveTrashCli = test::runShell("trash-list --version >/dev/null 2>&1").has_value();

// The lines of trash-cli's `trash-list` that name this original path.
std::vector<std::string> listed(const std::string& original) {
    std::vector<std::string> lines;
    std::istringstream out(test::runShell("trash-list 2>/dev/null").value_or(""));
    for (std::string line; std::getline(out, line);)
        if (line.size() > 20 && line.substr(20) == original) lines.push_back(line);
    return lines;
}

TEST(TrashPath, EncodesAllButThePlainCharacters) {
    const struct {
        std::string path, encoded;
    } cases[] = {
        {"/home/me/a-b_c.d~e/F9.png", "/home/me/a-b_c.d~e/F9.png"},
        {"/tmp/my shot 100% ü.png", "/tmp/my%20shot%20100%25%20%C3%BC.png"},
        {"/x/\n\t", "/x/%0A%09"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(Trash::encodePath(c.path), c.encoded);
    }
}

TEST_F(TrashTest, PutMovesTheFileAndWritesItsInfoUnderAFreeName) {
    const std::string numbered = "my shot 100% ü 2.png";
    const struct {
        const char* name;
        std::vector<std::string> inFiles, inInfo; // what the Trash already holds
        std::string landed;
    } cases[] = {
        {"an empty Trash", {}, {}, awkwardName},
        {"a file of that name", {awkwardName}, {awkwardName + ".trashinfo"}, numbered},
        {"only an info of that name", {}, {awkwardName + ".trashinfo"}, numbered},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(trash);
        for (const std::string& name : c.inFiles)
            writeFile(trash + "/files/" + name, "older");
        for (const std::string& name : c.inInfo)
            writeFile(trash + "/info/" + name, "older");
        const std::string path = writeFile(work.file(awkwardName), "ours");

        const TrashOutcome outcome = Trash::put(path, deletedAt);
        ASSERT_TRUE(outcome.status.isOk()) << outcome.status.message();
        EXPECT_FALSE(fs::exists(path));
        EXPECT_EQ(outcome.place, trash + "/files/" + c.landed);
        EXPECT_EQ(readFile(trash + "/files/" + c.landed), "ours");
        EXPECT_EQ(readFile(trash + "/info/" + c.landed + ".trashinfo"), infoText(path));
        for (const std::string& name : c.inFiles)
            EXPECT_EQ(readFile(trash + "/files/" + name), "older");
        for (const std::string& name : c.inInfo)
            EXPECT_EQ(readFile(trash + "/info/" + name), "older");
    }
}

TEST_F(TrashTest, AFileThatCannotGoLeavesNoInfo) {
    const TrashOutcome missing = Trash::put(work.file("absent.png"), deletedAt);
    EXPECT_FALSE(missing.status.isOk());
    EXPECT_TRUE(namesIn(trash + "/info").empty());

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
    EXPECT_TRUE(namesIn(trash + "/info").empty());
    EXPECT_TRUE(namesIn(trash + "/files").empty());
}

TEST_F(TrashTest, AFileOnAnotherMountGoesToThatMountsTrash) {
    enum class Shared { none, sticky, notSticky, link };
    struct Case {
        const char* name;
        Shared shared;
        std::string trashDir; // relative to the mount's top
    } cases[] = {
        {"no shared Trash", Shared::none, ".Trash-" + uid},
        {"sticky shared Trash", Shared::sticky, ".Trash/" + uid},
        {"shared Trash without the sticky bit", Shared::notSticky, ".Trash-" + uid},
        {"shared Trash that is a link", Shared::link, ".Trash-" + uid},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScratchMount disk(ScratchMount::Where::ownMount);
        if (!disk.ok()) GTEST_SKIP() << disk.why();
        const std::string shared = disk.file(".Trash");
        if (c.shared == Shared::sticky || c.shared == Shared::notSticky) {
            fs::create_directory(shared);
            chmod(shared.c_str(), c.shared == Shared::sticky ? 01777 : 0777);
        } else if (c.shared == Shared::link) {
            fs::create_directory(disk.file("real"));
            chmod(disk.file("real").c_str(), 01777);
            fs::create_directory_symlink("real", shared);
        }
        const std::string path = writeFile(disk.file("shots/" + awkwardName), "picture");

        const TrashOutcome outcome = Trash::put(path, deletedAt);
        ASSERT_TRUE(outcome.status.isOk()) << outcome.status.message();
        const std::string root = disk.file(c.trashDir);
        EXPECT_EQ(outcome.place, root + "/files/" + awkwardName);
        EXPECT_EQ(readFile(root + "/files/" + awkwardName), "picture");
        EXPECT_EQ(readFile(root + "/info/" + awkwardName + ".trashinfo"),
                  infoText("shots/" + awkwardName));
        EXPECT_TRUE(namesIn(trash + "/files").empty()) << "nothing crossed to the home Trash";
        if (haveTrashCli) {
            EXPECT_EQ(listed(path), std::vector<std::string>{"2026-11-01 01:30:05 " + path});
        }
        struct stat st {};
        ASSERT_EQ(lstat(root.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0700u);
    }
}

// Our own put of the same name, after trash-cli's, takes another slot and leaves theirs alone.
TEST_F(TrashTest, AFileTrashedByTrashPutIsNotMistakenForOurs) {
    if (!haveTrashCli) GTEST_SKIP() << "trash-cli is not installed";
    const std::string path = writeFile(work.file(awkwardName), "theirs");
    ASSERT_TRUE(test::runShell("trash-put '" + path + "'"));
    writeFile(path, "ours");
    const TrashOutcome outcome = Trash::put(path, deletedAt);
    ASSERT_TRUE(outcome.status.isOk() && outcome.place) << outcome.status.message();
    EXPECT_EQ(readFile(*outcome.place), "ours");
    EXPECT_EQ(listed(path).size(), 2u);
    std::multiset<std::string> held;
    for (const std::string& name : namesIn(trash + "/files"))
        held.insert(readFile(trash + "/files/" + name));
    EXPECT_EQ(held, (std::multiset<std::string>{"ours", "theirs"}));
}

} // namespace
} // namespace lumivale
