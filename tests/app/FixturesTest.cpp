#include "app/Fixtures.h"

#include "AppTestSupport.h"
#include "app/Canvas.h"
#include "app/FixtureDrawings.h"
#include "support/TempDir.h"

#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

using Kind = Fixture::Kind;

// The local time of the given calendar date, through the C library rather than ICU.
Date localDate(int year, int month, int day, int hour, int minute, int second) {
    std::tm tm{second, minute, hour, day, month - 1, year - 1900, 0, 0, -1}; // glibc's order
    return Date(std::chrono::seconds(std::mktime(&tm)));
}

TEST(FixturesTest, FileNameIsTheLocalTimeDaysAgo) {
    const struct {
        Date now;
        double daysAgo;
        std::string name;
    } cases[] = {
        // 4 h 48 min before nine in the morning.
        {localDate(2026, 11, 1, 9, 0, 0), 0.2, "Screenshot 2026-11-01 at 4.12.00 AM.png"},
        {localDate(2026, 11, 1, 9, 0, 0), 41.0, "Screenshot 2026-09-21 at 9.00.00 AM.png"},
        // Noon and midnight read 12, never 0.
        {localDate(2026, 3, 5, 12, 30, 5), 0.0, "Screenshot 2026-03-05 at 12.30.05 PM.png"},
        {localDate(2026, 3, 5, 0, 5, 9), 0.0, "Screenshot 2026-03-05 at 12.05.09 AM.png"},
        // Across a new year.
        {localDate(2027, 1, 1, 1, 0, 0), 0.125, "Screenshot 2026-12-31 at 10.00.00 PM.png"},
    };
    for (const auto& c : cases)
        EXPECT_EQ((Fixture{Kind::receipt, Shelf::bills, false, c.daysAgo}.fileName(c.now)), c.name);
}

// Every picture is written at twice its size in points, dated back, with every
// text a reader should find drawn word for word, possibly in several coloured pieces laid one
// after another; the sunset has no text at all.
TEST(FixturesTest, WriteMakesDatedPicturesWithTheirQuotedTextsInANewFolder) {
    test::ensureQtApp();
    test::TempDir dir;
    const std::string folder = dir.file("a/b/Screenshots");
    const Date now = localDate(2026, 11, 1, 9, 0, 0);
    const auto result = Fixtures::write(Fixtures::all(), folder, now);
    ASSERT_TRUE(result.status) << result.status.message();
    ASSERT_EQ(result.files.size(), Fixtures::all().size());
    for (size_t i = 0; i < result.files.size(); ++i) {
        const auto& [fixture, path] = result.files[i];
        SCOPED_TRACE(fixtureKindId(fixture.kind));
        EXPECT_EQ(fixture, Fixtures::all()[i]);
        EXPECT_EQ(path, folder + "/" + fixture.fileName(now));
        const auto modified =
            std::chrono::file_clock::to_sys(std::filesystem::last_write_time(path));
        EXPECT_LT(std::chrono::abs(modified - fixture.date(now)), std::chrono::milliseconds(1));
        const QImage image(QString::fromStdString(path), "PNG");
        EXPECT_EQ(QSizeF(image.size()), Fixtures::size(fixture.kind) * 2);
        const auto& drawing = FixtureDrawings::of(fixture.kind);
        Canvas canvas(drawing.w, drawing.h, drawing.bg);
        canvas.render(drawing.draw);
        QString drawn; // every piece, and where each starts
        std::vector<qsizetype> starts;
        for (const QString& piece : canvas.texts()) {
            starts.push_back(drawn.size());
            drawn += piece;
        }
        const std::vector<std::string> quoted = Fixtures::quotedTexts(fixture.kind);
        EXPECT_TRUE(fixture.kind == Kind::sunset ? quoted.empty() && drawn.isEmpty()
                                                 : quoted.size() >= 5);
        for (const std::string& text : quoted)
            EXPECT_TRUE(std::any_of(starts.begin(), starts.end(), [&](qsizetype start) {
                return QStringView(drawn).mid(start).startsWith(QString::fromStdString(text));
            })) << text;
    }
}

TEST(FixturesTest, WriteNeverReplacesAFileAndReportsWhatFailed) {
    test::ensureQtApp();
    test::TempDir dir;
    const Date now = localDate(2026, 11, 1, 9, 0, 0);
    const std::vector<Fixture> two = {Fixtures::all()[0], Fixtures::all()[1]};

    // The second name is taken: the first file is written, the second left as it was.
    const std::string taken = test::writeFile(dir.file(two[1].fileName(now)), "not a picture");
    const auto clash = Fixtures::write(two, dir.str(), now);
    EXPECT_FALSE(clash.status);
    EXPECT_NE(clash.status.message().find(two[1].fileName(now)), std::string::npos);
    ASSERT_EQ(clash.files.size(), 1u);
    EXPECT_EQ(clash.files[0].fixture, two[0]);
    EXPECT_EQ(test::readFile(taken), "not a picture");

    // A folder that cannot be made: nothing is written.
    const auto blocked = Fixtures::write(two, test::writeFile(dir.file("plain"), "x") + "/in", now);
    EXPECT_FALSE(blocked.status);
    EXPECT_TRUE(blocked.files.empty());
}

} // namespace
} // namespace lumivale
