#include "app/Fixtures.h"

#include "AppTestSupport.h"
#include "app/Canvas.h"
#include "app/FixtureDrawings.h"
#include "core/Sensitive.h"
#include "support/TempDir.h"

#include <QGuiApplication>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>

namespace lumivale {
namespace {

using Kind = Fixture::Kind;

// The local time of the given calendar date, through the C library rather than ICU.
Date localDate(int year, int month, int day, int hour, int minute, int second) {
    std::tm tm{second, minute, hour, day, month - 1, year - 1900, 0, 0, -1}; // glibc's order
    return Date(std::chrono::seconds(std::mktime(&tm)));
}

std::string kindName(Kind kind) {
    return std::string(fixtureKindId(kind));
}

// Without a QGuiApplication there are no fonts to draw with: nothing, rather than a crash.
// Declared first so that it runs before any other test of this program starts one.
TEST(FixturesTest, ImageIsNullWithoutGuiApplication) {
    if (QCoreApplication::instance())
        GTEST_SKIP() << "a QGuiApplication already runs in this process";
    EXPECT_TRUE(Fixtures::image(Kind::receipt).isNull());
}

TEST(FixturesTest, KindIdsRoundTripAndUnknownOnesAreRefused) {
    for (Kind kind : allFixtureKinds)
        EXPECT_EQ(fixtureKindFromId(fixtureKindId(kind)), kind) << kindName(kind);
    for (const char* unknown : {"", "IDCARD", "sunset ", "photo"})
        EXPECT_FALSE(fixtureKindFromId(unknown).has_value()) << unknown;
}

TEST(FixturesTest, FileNameIsTheLocalTimeDaysAgo) {
    struct Case {
        Date now;
        double daysAgo;
        std::string name;
    };
    const Case cases[] = {
        // 4 h 48 min before nine in the morning.
        {localDate(2026, 11, 1, 9, 0, 0), 0.2, "Screenshot 2026-11-01 at 4.12.00 AM.png"},
        {localDate(2026, 11, 1, 9, 0, 0), 41.0, "Screenshot 2026-09-21 at 9.00.00 AM.png"},
        // Noon and midnight read 12, never 0.
        {localDate(2026, 3, 5, 12, 30, 5), 0.0, "Screenshot 2026-03-05 at 12.30.05 PM.png"},
        {localDate(2026, 3, 5, 0, 5, 9), 0.0, "Screenshot 2026-03-05 at 12.05.09 AM.png"},
        // Across a new year.
        {localDate(2027, 1, 1, 1, 0, 0), 0.125, "Screenshot 2026-12-31 at 10.00.00 PM.png"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Fixture f{Kind::receipt, Shelf::bills, false, c.daysAgo};
        EXPECT_EQ(f.fileName(c.now), c.name);
    }
}

// The check itself is tested against published numbers with the sensitive-number rules.
TEST(FixturesTest, IdNumberIsTwelveDigitsWithAVerhoeffCheckDigit) {
    const std::string& n = Fixtures::idNumber();
    ASSERT_EQ(n.size(), 12u);
    EXPECT_EQ(n.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_TRUE(Sensitive::verhoeff(n));
}

// Every picture is drawn at twice its size in points, in many colours, with every text a reader
// should find drawn word for word, possibly in several coloured pieces laid one after another;
// the sunset has no text at all.
TEST(FixturesTest, EveryPictureIsDrawnWithItsQuotedTexts) {
    test::ensureQtApp();
    for (Kind kind : allFixtureKinds) {
        SCOPED_TRACE(kindName(kind));
        const QImage image = Fixtures::image(kind);
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(QSizeF(image.size()), Fixtures::size(kind) * 2);
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3)
                colours.insert(image.pixel(x, y));
        EXPECT_GT(colours.size(), 20u);
        const auto& drawing = FixtureDrawings::of(kind);
        Canvas canvas(drawing.w, drawing.h, drawing.bg);
        ASSERT_FALSE(canvas.render(drawing.draw).isNull());
        const auto& pieces = canvas.texts();
        EXPECT_EQ(Fixtures::quotedTexts(kind), drawing.quoted);
        if (kind == Kind::sunset) {
            EXPECT_TRUE(drawing.quoted.empty());
            EXPECT_TRUE(pieces.empty());
            continue;
        }
        EXPECT_GE(drawing.quoted.size(), 5u);
        for (const std::string& quoted : drawing.quoted) {
            const QString want = QString::fromStdString(quoted);
            bool found = false;
            for (size_t i = 0; i < pieces.size() && !found; ++i) {
                QString run;
                for (size_t j = i; j < pieces.size() && run.size() < want.size(); ++j)
                    run += pieces[j];
                found = run.startsWith(want);
            }
            EXPECT_TRUE(found) << quoted;
        }
    }
}

TEST(FixturesTest, WriteMakesDatedPicturesInANewFolder) {
    test::ensureQtApp();
    test::TempDir dir;
    const std::string folder = dir.file("a/b/Screenshots");
    const Date now = localDate(2026, 11, 1, 9, 0, 0);
    const auto result = Fixtures::write(Fixtures::all(), folder, now);
    ASSERT_TRUE(result.status) << result.status.message();
    ASSERT_EQ(result.files.size(), Fixtures::all().size());
    std::set<std::string> names;
    for (size_t i = 0; i < result.files.size(); ++i) {
        const auto& [fixture, path] = result.files[i];
        SCOPED_TRACE(kindName(fixture.kind));
        EXPECT_EQ(fixture, Fixtures::all()[i]);
        EXPECT_EQ(path, folder + "/" + fixture.fileName(now));
        names.insert(path);
        struct stat st {};
        ASSERT_EQ(stat(path.c_str(), &st), 0);
        const auto modified =
            std::chrono::seconds(st.st_mtim.tv_sec) + std::chrono::nanoseconds(st.st_mtim.tv_nsec);
        const auto expected = fixture.date(now).time_since_epoch();
        EXPECT_LT(std::chrono::abs(modified - expected), std::chrono::milliseconds(1));
        const QImage read(QString::fromStdString(path), "PNG");
        ASSERT_FALSE(read.isNull());
        EXPECT_EQ(QSizeF(read.size()), Fixtures::size(fixture.kind) * 2);
    }
    EXPECT_EQ(names.size(), result.files.size());
}

TEST(FixturesTest, WriteNeverReplacesAFileAndReportsWhatFailed) {
    test::ensureQtApp();
    test::TempDir dir;
    const Date now = localDate(2026, 11, 1, 9, 0, 0);
    const std::vector<Fixture> two = {Fixtures::all()[0], Fixtures::all()[1]};

    // The second name is taken: the first file is written, the second left as it was.
    const std::string taken = dir.file(two[1].fileName(now));
    test::writeFile(taken, "not a picture");
    const auto clash = Fixtures::write(two, dir.str(), now);
    EXPECT_FALSE(clash.status);
    EXPECT_NE(clash.status.message().find(two[1].fileName(now)), std::string::npos);
    ASSERT_EQ(clash.files.size(), 1u);
    EXPECT_EQ(clash.files[0].fixture, two[0]);
    EXPECT_EQ(test::readFile(taken), "not a picture");

    // A folder that cannot be made: nothing is written.
    const std::string file = test::writeFile(dir.file("plain"), "x");
    const auto blocked = Fixtures::write(two, file + "/inside", now);
    EXPECT_FALSE(blocked.status);
    EXPECT_TRUE(blocked.files.empty());
}

} // namespace
} // namespace lumivale
