#include "core/ScreenshotFolder.h"

#include "core/ScreenshotName.h"
#include "core/UserDirs.h"

#include <gtest/gtest.h>
#include <optional>
#include <set>

namespace ScreenshotFolder = lumivale::ScreenshotFolder;
using lumivale::UserDirs;

namespace {

TEST(ScreenshotFolderTest, ResolvesStoredLocations) {
    const std::string fallback = "/Users/a/Pictures/Screenshots";
    const std::set<std::string> folders = {"/", "/Users/a", "/Users/a/Shots", "/srv/My Shots",
                                           "/srv/Ünï"};
    // Only a clean absolute path is found: anything else asked of the disk gives the fallback.
    const auto isFolder = [&](const std::string& p) { return folders.contains(p); };
    const struct {
        std::optional<std::string> raw;
        std::string expected;
    } cases[] = {
        {std::nullopt, fallback},
        {" \t\r\n ", fallback},
        {"  ~/Shots/ \n", "/Users/a/Shots"},
        {"file://localhost/Users/a/Shots/", "/Users/a/Shots"},
        {"file:///Users/a/Shots?view=list#top", "/Users/a/Shots"},
        {"file:///srv/My%20Shots", "/srv/My Shots"},
        {"file:///srv/%C3%9Cn%C3%AF", "/srv/Ünï"},
        {"file:///srv/My%2", fallback}, // a broken escape: the URL does not parse
        {"./Shots", fallback},
        {"///", "/"},
        {"~", "/Users/a"},
        {"/Users/a/Shots//", "/Users/a/Shots"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.raw.value_or("(none)"));
        EXPECT_EQ(ScreenshotFolder::resolve(c.raw, "/Users/a", isFolder, fallback), c.expected);
    }
}

TEST(ScreenshotFolderTest, NamesFoldersFromHomeAndTellsWhichAreShared) {
    // Home, the Desktop and the Pictures folder also hold other things than screenshots.
    const UserDirs dirs{"/Users/a/Schreibtisch", "/Users/a/Bilder"};
    const struct {
        std::string path, home, displayName;
        bool shared;
    } cases[] = {
        {"/Users/a/Schreibtisch/Shots", "/Users/a", "Schreibtisch \u203A Shots", false},
        {"/Users/a", "/Users/a/", "Home", true},
        {"/Users/a/Bilder", "/Users/a", "Bilder", true},
        {"/Users/a/Bilder/../Schreibtisch/", "/Users/a", "Schreibtisch", true},
        {"/Users/a/Desktop/..//Bilder/./Shots", "/Users/a", "Bilder \u203A Shots", false},
        {"/Users/a/Pictures", "/Users/a", "Pictures", false},
        {"/Users/ab/Shots", "/Users/a", "/Users/ab/Shots", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path + " under " + c.home);
        EXPECT_EQ(ScreenshotFolder::displayName(c.path, c.home), c.displayName);
        EXPECT_EQ(ScreenshotFolder::isShared(c.path, c.home, dirs), c.shared);
    }
}

TEST(ScreenshotNameTest, OnlyTheStartOfTheFoldedNameCounts) {
    // Final sigma; viramas that folding takes away; half-width katakana; full-width letters;
    // Korean as some file systems store it, in separate jamo.
    for (const char* name :
         {"SCREENSHOT.png", "Capture d\u2019écran 2024-01-02.png", "Capture d'écran 2024-01-02.png",
          "Снимок экрана 2024-01-02.png", "Στιγμιότυπο οθόνης 2024-01-02.png",
          "स्क्रीनशॉट 2024-01-02.png", "ภาพหน้าจอ 2567-01-02.png", "ảnh màn hình.png",
          "ｽｸﾘｰﾝｼｮｯﾄ 2024.png", "ＳＣＲＥＥＮＳＨＯＴ.png", "截屏2024-01-02.png",
          "\u1109\u1173\u110F\u1173\u1105\u1175\u11AB\u1109\u1163\u11BA 2024.png"})
        EXPECT_TRUE(lumivale::ScreenshotName::looksLikeScreenshot(name)) << name;
    for (const char* name :
         {"My screenshot.png", "Screen_shot.png", "screensho.png", " Screenshot.png", ""})
        EXPECT_FALSE(lumivale::ScreenshotName::looksLikeScreenshot(name)) << name;
}

TEST(UserDirsTest, ParsesTheUserDirsFile) {
    const struct {
        std::string text, pictures;
    } cases[] = {
        {"", "/home/u/Pictures"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/Dl\"\nXDG_PICTURES_DIR=\"/data/pics/\"", "/data/pics"},
        {"XDG_PICTURES_DIR=\"$HOME/My \\\"Pics\\\" \\\\ x\"", "/home/u/My \"Pics\" \\ x"},
        {"  XDG_PICTURES_DIR = $HOME/Fotos  # mine", "/home/u/Fotos"},
        // Forms that the file may not use leave the default.
        {"XDG_PICTURES_DIR=\"Pictures\"", "/home/u/Pictures"},
        {"XDG_PICTURES_DIR=\"$HOMEY/x\"", "/home/u/Pictures"},
        {"XDG_PICTURES_DIRS=\"$HOME/No\"", "/home/u/Pictures"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(UserDirs::parse(c.text, "/home/u"), (UserDirs{"/home/u/Desktop", c.pictures}));
    }
    EXPECT_EQ(UserDirs::parse("XDG_DESKTOP_DIR=\"$HOME/Bureau\"", "/home/u").desktop,
              "/home/u/Bureau");
    EXPECT_EQ(lumivale::configHomeFor("/home/u", "relative/conf"), "/home/u/.config");
    EXPECT_EQ(lumivale::configHomeFor("/home/u", "/etc/u/conf/"), "/etc/u/conf");
}

} // namespace
