// The self-check: each check reports a fault in what it names and nothing else, a failing check
// never stops the run, the report and the clean-up always happen, and the user's own home is
// left exactly as it was.

#include "app/SelfTest.h"

#include "AppTestSupport.h"
#include "app/Fixtures.h"
#include "core/Library.h"
#include "reading/Reader.h"
#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <filesystem>
#include <grp.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

// How many checks a run makes, each on a line of its own.
constexpr size_t checkCount = 47;
constexpr int unreadableFolderCheck = 40;

// The lines of a report.
std::vector<std::string> linesOf(const std::string& report) {
    std::vector<std::string> lines;
    std::istringstream in(report);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// The numbers (from 1) of the checks that failed. Fails the test when the report is not one
// "PASS …" or "FAIL …" line per check followed by the verdict line.
std::set<int> failedChecks(const std::string& report) {
    const std::vector<std::string> lines = linesOf(report);
    std::set<int> failed;
    EXPECT_TRUE(report.ends_with("\n"));
    if (lines.size() != checkCount + 1) {
        ADD_FAILURE() << "the report has " << lines.size() << " lines:\n" << report;
        return failed;
    }
    for (size_t i = 0; i < checkCount; ++i) {
        if (lines[i].starts_with("FAIL "))
            failed.insert(static_cast<int>(i) + 1);
        else
            EXPECT_TRUE(lines[i].starts_with("PASS ")) << "line " << i + 1 << ": " << lines[i];
    }
    EXPECT_EQ(lines.back(),
              failed.empty() ? "ALL PASS" : std::to_string(failed.size()) + " FAILED");
    return failed;
}

// Checks what every run leaves behind: the report in its file and nothing else.
void expectOnlyTheReport(const std::string& dir, const SelfTest::Outcome& outcome) {
    EXPECT_EQ(test::readFile(dir + "/selftest.txt"), outcome.report);
    std::vector<std::string> left;
    for (const auto& entry : fs::directory_iterator(dir))
        left.push_back(entry.path().filename().string());
    EXPECT_EQ(left, std::vector<std::string>{"selftest.txt"}) << "the working tree stays behind";
}

// Alters what the services' reader (one a breakage set before, else the real one) reports.
std::function<void(AppModel::Services&)>
alterReading(std::function<void(const std::string& path, Reading&)> alter) {
    return [alter](AppModel::Services& s) {
        s.read = [alter, read = s.read](const std::string& path,
                                        const std::vector<std::string>& languages) {
            Reading reading = read ? read(path, languages) : Reader::read(path, languages);
            alter(path, reading);
            return reading;
        };
    };
}

std::string nameOf(const std::string& path) {
    return fs::path(path).filename().string();
}

// A key store that has lost its key by the next call: a new one every time.
class ChangingKey : public VaultKeySource {
  public:
    VaultResult<VaultKey> key() override { return VaultKey::random(); }
};

struct Breakage {
    std::string what;
    std::function<void(AppModel::Services&)> apply;
    std::set<int> failing; // the checks, numbered from 1, that must report it
};

// Breakages whose effects do not overlap share one run, since each run reads every fixture.
struct BrokenRun {
    std::string name;
    std::vector<Breakage> breakages;
};

void PrintTo(const BrokenRun& run, std::ostream* out) {
    *out << run.name;
}

std::vector<BrokenRun> brokenRuns() {
    return {
        {"readingTidyFindingOpening",
         {
             {"the reader loses the café receipt's words",
              alterReading([](const std::string&, Reading& r) {
                  for (const TextLine& line : r.lines)
                      if (line.text.find("Bloom") != std::string::npos) return r.lines.clear();
              }),
              // shelved under Other, not found by its words, filed with the wrong shelf, and the
              // receipt saved as a new screenshot shelves wrong too
              {2, 5, 18, 19, 36}},
             {"the clock runs a year ahead",
              [](AppModel::Services& s) {
                  s.clock = [] { return lumivale::now() + std::chrono::hours(24 * 365); };
              },
              {8}},
             {"the Trash refuses the first file (the sunset)",
              [](AppModel::Services& s) {
                  s.trasher = [trash = s.trasher,
                               first = std::make_shared<bool>(true)](const std::string& path) {
                      if (std::exchange(*first, false))
                          return TrashOutcome::failure("the Trash is full");
                      return trash(path);
                  };
              },
              {27, 28}},
             {"the key store gives a different key after locking",
              [](AppModel::Services& s) { s.keySource = std::make_shared<ChangingKey>(); },
              {35, 44, 45, 46, 47}},
             {"an added folder's picture cannot be decoded",
              alterReading([](const std::string& path, Reading& r) {
                  if (nameOf(path) == "IMG_0001.png") r = Reading{.failed = true};
              }),
              {39}},
         }},
        {"lockedAreaAndBrokenFile",
         {
             {"the keyring refuses the key",
              [](AppModel::Services& s) { s.keySource = std::make_shared<test::RefusingKey>(-25300); },
              // nothing is locked, so nothing can be opened or restored
              {30, 31, 32, 33, 35, 44, 45, 46, 47}},
             {"the reader takes a file that is no picture for one",
              alterReading([](const std::string& path, Reading& r) {
                  if (nameOf(path).starts_with("Screenshot broken"))
                      r = Reading{.lines = {TextLine{.text = "not an image"}},
                                  .pixelWidth = 10,
                                  .pixelHeight = 10};
              }),
              {38}},
         }},
    };
}

class SelfTestBroken : public ::testing::TestWithParam<BrokenRun> {
  protected:
    void SetUp() override { test::ensureQtApp(); }
};

TEST_P(SelfTestBroken, reportsExactlyWhatIsBrokenAndGoesOnToTheEnd) {
    std::set<int> expected;
    for (const Breakage& b : GetParam().breakages)
        expected.insert(b.failing.begin(), b.failing.end());
    // Permissions do not hold for root: the folder taken away still opens.
    if (test::runningAsRoot()) expected.insert(unreadableFolderCheck);

    test::TempDir dir;
    const SelfTest::Outcome outcome = SelfTest::run(dir.str(), [&](AppModel::Services& services) {
        for (const Breakage& b : GetParam().breakages)
            b.apply(services);
    });

    const std::set<int> failed = failedChecks(outcome.report);
    for (const Breakage& b : GetParam().breakages)
        for (int check : b.failing)
            EXPECT_TRUE(failed.count(check)) << b.what << ": check " << check << " passed";
    for (int check : failed)
        EXPECT_TRUE(expected.count(check))
            << linesOf(outcome.report)[check - 1] << " (for nothing broken)";
    EXPECT_EQ(outcome.failures, static_cast<int>(failed.size()));
    expectOnlyTheReport(dir.str(), outcome);
    std::cout << outcome.report;
}

INSTANTIATE_TEST_SUITE_P(Breakages, SelfTestBroken, ::testing::ValuesIn(brokenRuns()),
                         [](const auto& info) { return info.param.name; });

// Every file and folder under a root: its kind, bytes and modification time.
std::map<std::string, std::string> snapshot(const std::string& root) {
    std::map<std::string, std::string> out;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat st {};
        lstat(entry.path().c_str(), &st);
        std::string state = std::to_string(st.st_mode) + " " + std::to_string(st.st_mtim.tv_sec) +
                            "." + std::to_string(st.st_mtim.tv_nsec);
        if (S_ISREG(st.st_mode)) state += " " + test::readFile(entry.path().string());
        out[fs::relative(entry.path(), root).string()] = state;
    }
    return out;
}

// Makes this process the unprivileged user "nobody", owner of the test's own folders, so that
// taking a folder's permissions away holds as it does for any user.
void becomeNobody() {
    const char* root = std::getenv("LUMIVALE_TEST_ROOT");
    ASSERT_TRUE(root);
    ASSERT_EQ(lchown(root, 65534, 65534), 0);
    for (const auto& entry : fs::recursive_directory_iterator(root))
        ASSERT_EQ(lchown(entry.path().c_str(), 65534, 65534), 0) << entry.path();
    ASSERT_EQ(setgroups(0, nullptr), 0);
    ASSERT_EQ(setgid(65534), 0);
    ASSERT_EQ(setuid(65534), 0);
}

// A home as a user has it: screenshots, a library, settings, a Trash, a keyring file.
void furnish(const std::string& home) {
    test::writeFile(home + "/.config/user-dirs.dirs",
                    "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\nXDG_PICTURES_DIR=\"$HOME/Pictures\"\n");
    const std::string screenshots = home + "/Pictures/Screenshots";
    const auto written =
        Fixtures::write({Fixtures::all()[0], Fixtures::all()[5]}, screenshots, lumivale::now());
    ASSERT_TRUE(written.status.isOk()) << written.status.message();
    ASSERT_EQ(written.files.size(), 2u);
    test::writeFile(home + "/Desktop/Screenshot 2024-02-03 at 10.11.12 AM.png",
                    "a picture of the user's own");

    Library library;
    for (const auto& file : written.files)
        library.put(Shot(file.path, static_cast<int64_t>(fs::file_size(file.path)), lumivale::now(),
                         lumivale::now()));
    library.extraFolders = {home + "/Pictures/Phone"};
    ASSERT_TRUE(library.save(home + "/.local/share/Lumivale/library.plist").isOk());
    test::writeFile(home + "/Pictures/Phone/IMG_0001.png", "the user's phone picture");
    test::writeFile(home + "/Pictures/Lumivale Archive/Bills and receipts/Screenshot old.png",
                    "filed long ago");
    test::writeFile(home + "/.config/Lumivale/Lumivale.conf",
                    "[General]\nblurPrivate=false\nwelcomeDone=true\n");
    test::writeFile(home + "/.local/share/Trash/files/Screenshot gone.png", "trashed by the user");
    test::writeFile(home + "/.local/share/Trash/info/Screenshot gone.png.trashinfo",
                    "[Trash Info]\nPath=" + home +
                        "/Desktop/Screenshot%20gone.png\nDeletionDate=2024-01-02T03:04:05\n");
    test::writeFile(home + "/.local/share/keyrings/login.keyring", "the user's keyring");
}

// In a process of its own, so that everything in it (Qt, fonts, the reader) starts out with this
// home, as a real run does.
TEST(SelfTestTest, passesAndLeavesTheUsersHomeAsItWas) {
    if (!test::runsInChild({"own-home", {}, {}, 280s})) return;
    if (test::runningAsRoot()) becomeNobody();
    if (HasFatalFailure()) return;

    test::TempDir home;
    test::TempDir dir;
    const std::string h = home.str();
    fs::create_directories(h + "/.run");
    fs::permissions(h + "/.run", fs::perms::owner_all, fs::perm_options::replace);
    setenv("HOME", h.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (h + "/.config").c_str(), 1);
    setenv("XDG_DATA_HOME", (h + "/.local/share").c_str(), 1);
    setenv("XDG_CACHE_HOME", (h + "/.cache").c_str(), 1);
    setenv("XDG_STATE_HOME", (h + "/.local/state").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (h + "/.run").c_str(), 1);
    setenv("LUMIVALE_DATA_DIR", (h + "/.local/share/Lumivale").c_str(), 1);
    test::ensureQtApp();
    furnish(h);
    if (HasFatalFailure()) return;

    const auto before = snapshot(h);
    const SelfTest::Outcome outcome = SelfTest::run(dir.str());
    const auto after = snapshot(h);

    EXPECT_EQ(failedChecks(outcome.report), std::set<int>{}) << outcome.report;
    EXPECT_EQ(outcome.failures, 0);
    EXPECT_GT(outcome.seconds, 0);
    expectOnlyTheReport(dir.str(), outcome);
    for (const auto& [path, state] : after)
        EXPECT_TRUE(before.count(path)) << "new in the home: " << path;
    for (const auto& [path, state] : before) {
        const auto now = after.find(path);
        if (now == after.end())
            ADD_FAILURE() << "gone from the home: " << path;
        else
            EXPECT_TRUE(now->second == state) << "changed in the home: " << path;
    }
    std::cout << outcome.report << "(" << outcome.seconds << " seconds)\n";
}

} // namespace
} // namespace lumivale
