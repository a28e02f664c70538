// The self-check: each check reports a fault in what it names and nothing else, and a failing
// check never stops the run. (Its entries, its clean-up and the user's home left as it was are
// checked by tests/integration/selfcheck.sh.)
#include "app/SelfTest.h"

#include "AppTestSupport.h"
#include "reading/Reader.h"
#include "support/TempDir.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace lumivale {
namespace {

// The numbers (from 1) of the checks that failed, after checking the verdict that ends the
// report of 47 checks.
std::set<int> failedChecks(const std::string& report) {
    std::istringstream in(report);
    std::set<int> failed;
    std::string line;
    for (int n = 1; n <= 47 && std::getline(in, line); ++n)
        if (line.starts_with("FAIL ")) failed.insert(n);
    EXPECT_TRUE(std::getline(in, line));
    EXPECT_EQ(line, failed.empty() ? "ALL PASS" : std::to_string(failed.size()) + " FAILED");
    return failed;
}

using Services = AppModel::Services;

// One breakage per group of checks, in one run, since each run reads every fixture.
TEST(SelfTestTest, ReportsExactlyWhatIsBrokenAndGoesOnToTheEnd) {
    test::ensureQtApp();
    test::TempDir dir;
    const SelfTest::Outcome outcome = SelfTest::run(dir.str(), [](Services& s) {
        s.read = [](const std::string& path, const std::vector<std::string>& languages) {
            // The reader takes a file that is no picture for one.
            if (path.find("/Screenshot broken") != std::string::npos)
                return Reading{.lines = {TextLine{.text = "not an image"}},
                               .pixelWidth = 10,
                               .pixelHeight = 10};
            // It loses the café receipt's words: shelved under Other, not found by its words,
            // filed with the wrong shelf, and the receipt saved as a new screenshot too.
            Reading reading = Reader::read(path, languages);
            if (std::any_of(reading.lines.begin(), reading.lines.end(), [](const TextLine& l) {
                    return l.text.find("Bloom") != std::string::npos;
                }))
                reading.lines.clear();
            return reading;
        };
        // The Trash refuses the first file (the sunset).
        s.trasher = [trash = s.trasher, first = std::make_shared<bool>(true)](const auto& path) {
            if (std::exchange(*first, false)) return TrashOutcome::failure("the Trash is full");
            return trash(path);
        };
        // The keyring refuses the key: nothing is locked, so nothing can be opened or restored.
        s.keySource = std::make_shared<test::RefusingKey>(-25300);
    });
    std::set<int> expected{2, 5, 18, 19, 36, 38, 27, 28, 30, 31, 32, 33, 35, 44, 45, 46, 47};
    // Permissions do not hold for root: the folder taken away still opens.
    if (test::runningAsRoot()) expected.insert(40);
    EXPECT_EQ(failedChecks(outcome.report), expected) << outcome.report;
    EXPECT_EQ(outcome.failures, int(expected.size()));
    EXPECT_EQ(test::readFile(dir.file("selftest.txt")), outcome.report);
}

} // namespace
} // namespace lumivale
