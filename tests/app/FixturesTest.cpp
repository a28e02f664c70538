#include "app/Fixtures.h"

#include "app/Canvas.h"
#include "app/FixtureDrawings.h"
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

// Fonts are only reachable through a running QGuiApplication; one serves the whole program.
void startGui() {
    static int argc = 1;
    static char name[] = "FixturesTest";
    static char* argv[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(argc, argv);
}

// The local time of the given calendar date, through the C library rather than ICU.
Date localDate(int year, int month, int day, int hour, int minute, int second) {
    std::tm tm{};
    tm.tm_year = year - 1900;
    tm.tm_mon = month - 1;
    tm.tm_mday = day;
    tm.tm_hour = hour;
    tm.tm_min = minute;
    tm.tm_sec = second;
    tm.tm_isdst = -1;
    return Date(std::chrono::seconds(std::mktime(&tm)));
}

// The published Verhoeff check, written out independently of the program's own.
bool verhoeff(const std::string& digits) {
    static const int d[10][10] = {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 3, 4, 0, 6, 7, 8, 9, 5},
                                  {2, 3, 4, 0, 1, 7, 8, 9, 5, 6}, {3, 4, 0, 1, 2, 8, 9, 5, 6, 7},
                                  {4, 0, 1, 2, 3, 9, 5, 6, 7, 8}, {5, 9, 8, 7, 6, 0, 4, 3, 2, 1},
                                  {6, 5, 9, 8, 7, 1, 0, 4, 3, 2}, {7, 6, 5, 9, 8, 2, 1, 0, 4, 3},
                                  {8, 7, 6, 5, 9, 3, 2, 1, 0, 4}, {9, 8, 7, 6, 5, 4, 3, 2, 1, 0}};
    static const int p[8][10] = {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 5, 7, 6, 2, 8, 3, 0, 9, 4},
                                 {5, 8, 0, 3, 7, 9, 6, 1, 4, 2}, {8, 9, 1, 6, 0, 4, 3, 5, 2, 7},
                                 {9, 4, 5, 3, 1, 2, 6, 8, 7, 0}, {4, 2, 8, 6, 5, 7, 3, 9, 0, 1},
                                 {2, 7, 9, 3, 8, 0, 6, 4, 1, 5}, {7, 0, 4, 6, 9, 1, 3, 2, 5, 8}};
    int c = 0;
    for (size_t i = 0; i < digits.size(); ++i)
        c = d[c][p[i % 8][digits[digits.size() - 1 - i] - '0']];
    return c == 0;
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

TEST(FixturesTest, TableHoldsEveryKindOnceWithItsShelf) {
    struct Row {
        Kind kind;
        Shelf expected;
        bool sensitive;
        double daysAgo;
    };
    const Row rows[] = {
        {Kind::receipt, Shelf::bills, false, 0.2},
        {Kind::chat, Shelf::chats, false, 0.5},
        {Kind::boardingPass, Shelf::tickets, false, 1.3},
        {Kind::code, Shelf::code, false, 1.8},
        {Kind::upiPayment, Shelf::bills, false, 2.4},
        {Kind::idCard, Shelf::ids, true, 3.1},
        {Kind::shopping, Shelf::shopping, false, 4.2},
        {Kind::map, Shelf::maps, false, 5.6},
        {Kind::terminal, Shelf::code, false, 6.3},
        {Kind::movieTicket, Shelf::tickets, false, 8.5},
        {Kind::groupChat, Shelf::chats, false, 11.2},
        {Kind::recipe, Shelf::other, false, 13.7},
        {Kind::passport, Shelf::ids, true, 19.4},
        {Kind::trainTicket, Shelf::tickets, false, 24.9},
        {Kind::hardwareReceipt, Shelf::bills, false, 33.3},
        {Kind::sunset, Shelf::other, false, 41.0},
    };
    const auto& all = Fixtures::all();
    ASSERT_EQ(all.size(), std::size(rows));
    std::set<Kind> seen;
    for (size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(kindName(rows[i].kind));
        EXPECT_EQ(all[i].kind, rows[i].kind);
        EXPECT_EQ(all[i].expected, rows[i].expected);
        EXPECT_EQ(all[i].sensitive, rows[i].sensitive);
        EXPECT_DOUBLE_EQ(all[i].daysAgo, rows[i].daysAgo);
        seen.insert(all[i].kind);
    }
    EXPECT_EQ(seen.size(), allFixtureKinds.size());
}

TEST(FixturesTest, KindRawValuesAreCaseNamesAndRoundTrip) {
    const char* names[] = {
        "idCard",       "passport",    "receipt",     "upiPayment", "hardwareReceipt",
        "boardingPass", "trainTicket", "movieTicket", "chat",       "groupChat",
        "code",         "terminal",    "shopping",    "map",        "recipe",
        "sunset"};
    ASSERT_EQ(std::size(names), allFixtureKinds.size());
    for (size_t i = 0; i < allFixtureKinds.size(); ++i) {
        SCOPED_TRACE(names[i]);
        EXPECT_EQ(fixtureKindId(allFixtureKinds[i]), names[i]);
        EXPECT_EQ(fixtureKindFromId(names[i]), allFixtureKinds[i]);
    }
    for (const char* unknown : {"", "IDCARD", "idcard", "sunset ", "photo"}) {
        SCOPED_TRACE(unknown);
        EXPECT_FALSE(fixtureKindFromId(unknown).has_value());
    }
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
        {localDate(2026, 11, 1, 9, 0, 0), 0.0, "Screenshot 2026-11-01 at 9.00.00 AM.png"},
        {localDate(2026, 11, 1, 9, 0, 0), 0.5, "Screenshot 2026-10-31 at 9.00.00 PM.png"},
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

TEST(FixturesTest, FileNameFollowsTheLocalTimeZone) {
    const std::string saved = std::getenv("TZ") ? std::getenv("TZ") : "";
    const Date now = localDate(2026, 11, 1, 9, 0, 0); // 03:30 UTC
    const Fixture f{Kind::chat, Shelf::chats, false, 0};
    setenv("TZ", "UTC", 1);
    tzset();
    const std::string utc = f.fileName(now);
    setenv("TZ", saved.c_str(), 1);
    tzset();
    EXPECT_EQ(utc, "Screenshot 2026-11-01 at 3.30.00 AM.png");
    EXPECT_EQ(f.fileName(now), "Screenshot 2026-11-01 at 9.00.00 AM.png");
}

TEST(FixturesTest, IdNumberIsTwelveDigitsWithAVerhoeffCheckDigit) {
    const std::string& n = Fixtures::idNumber();
    ASSERT_EQ(n.size(), 12u);
    EXPECT_EQ(n.substr(0, 11), "48217395206");
    EXPECT_EQ(n.find_first_not_of("0123456789"), std::string::npos);
    EXPECT_TRUE(verhoeff(n));
    // The check digit is the only one that passes.
    for (char d = '0'; d <= '9'; ++d)
        if (d != n.back()) {
            SCOPED_TRACE(std::string(1, d));
            EXPECT_FALSE(verhoeff(n.substr(0, 11) + d));
        }
    EXPECT_TRUE(verhoeff("2363")); // the textbook example keeps the helper honest
    EXPECT_FALSE(verhoeff("2364"));
}

TEST(FixturesTest, EveryImageIsTwicePointSizeAndDrawn) {
    startGui();
    const std::map<Kind, QSize> points = {{Kind::idCard, {760, 480}},
                                          {Kind::passport, {820, 540}},
                                          {Kind::receipt, {620, 860}},
                                          {Kind::upiPayment, {390, 844}},
                                          {Kind::hardwareReceipt, {560, 760}},
                                          {Kind::boardingPass, {390, 844}},
                                          {Kind::trainTicket, {900, 560}},
                                          {Kind::movieTicket, {390, 844}},
                                          {Kind::chat, {390, 844}},
                                          {Kind::groupChat, {900, 600}},
                                          {Kind::code, {960, 600}},
                                          {Kind::terminal, {900, 520}},
                                          {Kind::shopping, {390, 844}},
                                          {Kind::map, {390, 844}},
                                          {Kind::recipe, {820, 640}},
                                          {Kind::sunset, {600, 400}}};
    for (Kind kind : allFixtureKinds) {
        SCOPED_TRACE(kindName(kind));
        const QImage image = Fixtures::image(kind);
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(image.size(), points.at(kind) * 2);
        EXPECT_EQ(Fixtures::size(kind), QSizeF(points.at(kind)));
        EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
        // Something beyond the background was drawn: a screenshot has many colours.
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3)
                colours.insert(image.pixel(x, y));
        EXPECT_GT(colours.size(), 20u);
    }
}

// Every text a reader should find is drawn word for word, possibly in several coloured pieces
// laid one after another; the sunset has no text at all.
TEST(FixturesTest, QuotedTextsAreDrawnAndTheSunsetHasNone) {
    startGui();
    for (Kind kind : allFixtureKinds) {
        SCOPED_TRACE(kindName(kind));
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

TEST(FixturesTest, IdCardShowsTheIdNumber) {
    const auto& quoted = Fixtures::quotedTexts(Kind::idCard);
    const std::string& n = Fixtures::idNumber();
    const std::string grouped = n.substr(0, 4) + " " + n.substr(4, 4) + " " + n.substr(8, 4);
    EXPECT_NE(std::find(quoted.begin(), quoted.end(), grouped), quoted.end());
}

TEST(FixturesTest, WriteMakesDatedPicturesInANewFolder) {
    startGui();
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
        EXPECT_EQ(st.st_atim.tv_sec, st.st_mtim.tv_sec); // before reading touches it
        const QImage read(QString::fromStdString(path), "PNG");
        ASSERT_FALSE(read.isNull());
        EXPECT_EQ(QSizeF(read.size()), Fixtures::size(fixture.kind) * 2);
    }
    EXPECT_EQ(names.size(), result.files.size());
    EXPECT_EQ(result.files.front().fixture.date(now), now - std::chrono::minutes(288));
}

TEST(FixturesTest, WriteNeverReplacesAFileAndReportsWhatFailed) {
    startGui();
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

    // An empty list only makes the folder.
    const auto none = Fixtures::write({}, dir.file("empty"), now);
    EXPECT_TRUE(none.status);
    EXPECT_TRUE(none.files.empty());
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("empty")));
}

} // namespace
} // namespace lumivale
