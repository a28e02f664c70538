// The self-check: each check reports a fault in what it names and nothing else, and a failing
// check never stops the run. (Its entries, its clean-up and the user's home left as it was are
// checked by tests/integration/selfcheck.sh.)
#include "app/SelfTest.h"

#include "AppTestSupport.h"
#include "reading/Reader.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace lumivale {
namespace {

// How many checks a run makes, each on a line of its own.
constexpr int checkCount = 47;

// The numbers (from 1) of the checks that failed, after checking the verdict that ends the
// report of 47 checks.
std::set<int> failedChecks(const std::string& report) {
    std::istringstream in(report);
    std::set<int> failed;
    std::string line;
    for (int n = 1; n <= checkCount && std::getline(in, line); ++n)
        if (line.starts_with("FAIL ")) failed.insert(n);
    EXPECT_TRUE(std::getline(in, line));
    EXPECT_EQ(line, failed.empty() ? "ALL PASS" : std::to_string(failed.size()) + " FAILED");
    return failed;
}

using Services = AppModel::Services;

// Alters what the services' reader (one a breakage set before, else the real one) reports.
std::function<void(Services&)>
alterReading(std::function<void(const std::string& path, Reading&)> alter) {
    return [alter](Services& s) {
        s.read = [alter, read = s.read](const std::string& path,
                                        const std::vector<std::string>& languages) {
            Reading reading = read ? read(path, languages) : Reader::read(path, languages);
            alter(path, reading);
            return reading;
        };
    };
}

// A key store that has lost its key by the next call: a new one every time.
class ChangingKey : public VaultKeySource {
  public:
    VaultResult<VaultKey> key() override { return VaultKey::random(); }
};

struct Breakage {
    std::function<void(Services&)> apply;
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

const BrokenRun brokenRuns[] = {
    {"readingTidyFindingOpening",
     {
         // The reader loses the café receipt's words: shelved under Other, not found by its
         // words, filed with the wrong shelf, and the receipt saved as a new screenshot too.
         {alterReading([](const std::string&, Reading& r) {
              for (const TextLine& line : r.lines)
                  if (line.text.find("Bloom") != std::string::npos) return r.lines.clear();
          }),
          {2, 5, 18, 19, 36}},
         // The clock runs a year ahead.
         {[](Services& s) { s.clock = [] { return now() + std::chrono::hours(24 * 365); }; }, {8}},
         // The Trash refuses the first file (the sunset).
         {[](Services& s) {
              s.trasher = [trash = s.trasher,
                           first = std::make_shared<bool>(true)](const std::string& path) {
                  if (std::exchange(*first, false))
                      return TrashOutcome::failure("the Trash is full");
                  return trash(path);
              };
          },
          {27, 28}},
         // The key store gives a different key after locking.
         {[](Services& s) { s.keySource = std::make_shared<ChangingKey>(); }, {35, 44, 45, 46, 47}},
         // An added folder's picture cannot be decoded.
         {alterReading([](const std::string& path, Reading& r) {
              if (path.ends_with("/IMG_0001.png")) r = Reading{.failed = true};
          }),
          {39}},
     }},
    {"lockedAreaAndBrokenFile",
     {
         // The keyring refuses the key: nothing is locked, so nothing can be opened or restored.
         {[](Services& s) { s.keySource = std::make_shared<test::RefusingKey>(-25300); },
          {30, 31, 32, 33, 35, 44, 45, 46, 47}},
         // The reader takes a file that is no picture for one.
         {alterReading([](const std::string& path, Reading& r) {
              if (path.find("/Screenshot broken") != std::string::npos)
                  r = Reading{.lines = {TextLine{.text = "not an image"}},
                              .pixelWidth = 10,
                              .pixelHeight = 10};
          }),
          {38}},
     }},
};

class SelfTestBroken : public testing::TestWithParam<BrokenRun> {};

TEST_P(SelfTestBroken, reportsExactlyWhatIsBrokenAndGoesOnToTheEnd) {
    test::ensureQtApp();
    std::set<int> expected;
    for (const Breakage& b : GetParam().breakages)
        expected.insert(b.failing.begin(), b.failing.end());
    // Permissions do not hold for root: the folder taken away (check 40) still opens.
    if (test::runningAsRoot()) expected.insert(40);

    test::TempDir dir;
    const SelfTest::Outcome outcome = SelfTest::run(dir.str(), [&](Services& services) {
        for (const Breakage& b : GetParam().breakages)
            b.apply(services);
    });
    EXPECT_EQ(failedChecks(outcome.report), expected) << outcome.report;
    EXPECT_EQ(outcome.failures, static_cast<int>(expected.size()));
    EXPECT_EQ(test::readFile(dir.file("selftest.txt")), outcome.report);
}

INSTANTIATE_TEST_SUITE_P(Breakages, SelfTestBroken, testing::ValuesIn(brokenRuns),
                         [](const auto& info) { return info.param.name; });

} // namespace
} // namespace lumivale
