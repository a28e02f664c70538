#include "core/ScreenshotFolder.h"

#include "core/ScreenshotName.h"
#include "core/UserDirs.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <optional>
#include <set>

namespace ScreenshotFolder = lumivale::ScreenshotFolder;
using lumivale::UserDirs;

namespace {

TEST(ScreenshotFolderTest, ResolvesStoredLocations) {
    const std::string fallback = "/Users/a/Pictures/Screenshots";
    const std::set<std::string> folders = {"/", "/Users/a", "/Users/a/Shots", "/srv/My Shots",
                                           "/srv/Bilder/Ünï"};
    std::vector<std::string> asked;
    const auto isFolder = [&](const std::string& p) {
        asked.push_back(p);
        return folders.contains(p);
    };
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
        {"file:///srv/Bilder/%C3%9Cn%C3%AF", "/srv/Bilder/Ünï"},
        {"file:///srv/My%2", fallback},       // a broken escape: the URL does not parse
        {"file:///srv/My%00Shots", fallback}, // nor does an escaped NUL
        {"./Shots", fallback},
        {"~user/Shots", fallback},
        {"///", "/"},
        {"~", "/Users/a"},
        {"/Users/a/Shots//", "/Users/a/Shots"},
        {"~/Missing/", fallback},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.raw.value_or("(none)"));
        asked.clear();
        EXPECT_EQ(ScreenshotFolder::resolve(c.raw, "/Users/a", isFolder, fallback), c.expected);
        // Only a clean absolute path is ever tested against the disk.
        for (const std::string& p : asked)
            EXPECT_TRUE(p.starts_with('/') && (p == "/" || !p.ends_with('/'))) << p;
    }
    // The real test asks the disk: a file is not a folder.
    lumivale::test::TempDir dir;
    lumivale::test::writeFile(dir.file("Shots/a.png"), "x");
    EXPECT_EQ(ScreenshotFolder::resolve("file://" + dir.file("Shots") + "/", dir.str(),
                                        ScreenshotFolder::isFolder, fallback),
              dir.file("Shots"));
    EXPECT_EQ(ScreenshotFolder::resolve(dir.file("Shots/a.png"), dir.str(),
                                        ScreenshotFolder::isFolder, fallback),
              fallback);
}

TEST(ScreenshotFolderTest, DisplayNamesAreRelativeToHome) {
    const struct {
        std::string path, home, expected;
    } cases[] = {
        {"/Users/a/Desktop/Shots", "/Users/a", "Desktop \u203A Shots"},
        {"/Users/a/", "/Users/a", "Home"},
        {"/Users/a/Desktop", "/Users/a/", "Desktop"},
        {"/Users/a/Desktop/../Pictures/./Shots", "/Users/a", "Pictures \u203A Shots"},
        {"/Users/ab/Shots", "/Users/a", "/Users/ab/Shots"},
        {"/Users", "/Users/a", "/Users"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path + " under " + c.home);
        EXPECT_EQ(ScreenshotFolder::displayName(c.path, c.home), c.expected);
    }
}

TEST(ScreenshotFolderTest, SharedFoldersAreHomeDesktopAndPictures) {
    const UserDirs dirs{"/home/u/Schreibtisch", "/home/u/Bilder"};
    const struct {
        std::string folder;
        bool shared;
    } cases[] = {
        {"/home/u/", true},
        {"/home/u/Schreibtisch", true},
        {"/home/u/Bilder/", true},
        {"/home/u/Bilder/../Schreibtisch", true},
        {"/home/u/Bilder/Screenshots", false},
        {"/home/u/Pictures", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder);
        EXPECT_EQ(ScreenshotFolder::isShared(c.folder, "/home/u", dirs), c.shared);
    }
    EXPECT_EQ(ScreenshotFolder::defaultFolder(dirs), "/home/u/Bilder/Screenshots");
}

TEST(ScreenshotNameTest, OnlyTheStartOfTheFoldedNameCounts) {
    const struct {
        std::string name;
        bool screenshot;
    } cases[] = {
        {"SCREENSHOT.png", true},
        {"Screen Shot 2019-05-06 at 1.02.03 PM.png", true},
        {"Bildschirmfoto 2024-01-02 um 10.11.12.png", true},
        {"Capture d\u2019écran 2024-01-02.png", true},
        {"Capture d'écran 2024-01-02.png", true},
        {"Снимок экрана 2024-01-02.png", true},
        {"Στιγμιότυπο οθόνης 2024-01-02.png", true}, // final sigma
        {"स्क्रीनशॉट 2024-01-02.png", true},           // viramas go, vowel signs stay
        {"ภาพหน้าจอ 2567-01-02.png", true},
        {"ảnh màn hình.png", true},
        {"ｽｸﾘｰﾝｼｮｯﾄ 2024.png", true},       // half-width katakana
        {"ＳＣＲＥＥＮＳＨＯＴ.png", true}, // full-width letters
        {"截屏2024-01-02.png", true},
        // Korean as some file systems store it, in separate jamo.
        {"\u1109\u1173\u110F\u1173\u1105\u1175\u11AB\u1109\u1163\u11BA 2024.png", true},
        {"My screenshot.png", false},
        {"Screen_shot.png", false},
        {"screensho.png", false},
        {" Screenshot.png", false},
        {"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(lumivale::ScreenshotName::looksLikeScreenshot(c.name), c.screenshot);
    }
}

TEST(UserDirsTest, ParsesAndLoadsTheUserDirsFile) {
    const struct {
        std::string text, pictures;
    } cases[] = {
        {"", "/home/u/Pictures"},
        {"# by "
         "xdg-user-dirs-update\nXDG_DOWNLOAD_DIR=\"$HOME/Dl\"\nXDG_PICTURES_DIR=\"$HOME/Bilder\"",
         "/home/u/Bilder"},
        {"XDG_PICTURES_DIR=\"/data/pics/\"", "/data/pics"},
        {"XDG_PICTURES_DIR=\"$HOME/My \\\"Pics\\\" \\\\ x\"", "/home/u/My \"Pics\" \\ x"},
        {"XDG_PICTURES_DIR=$HOME/Fotos", "/home/u/Fotos"},
        {"  XDG_PICTURES_DIR = \"$HOME/Fotos\"  # mine", "/home/u/Fotos"},
        {"XDG_PICTURES_DIR=\"$HOME/One\"\nXDG_PICTURES_DIR=\"$HOME/Two\"", "/home/u/Two"},
        // Forms that the file may not use leave the default.
        {"XDG_PICTURES_DIR=\"Pictures\"", "/home/u/Pictures"},
        {"XDG_PICTURES_DIR=\"$HOMEY/x\"", "/home/u/Pictures"},
        {"# XDG_PICTURES_DIR=\"$HOME/No\"", "/home/u/Pictures"},
        {"XDG_PICTURES_DIRS=\"$HOME/No\"", "/home/u/Pictures"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(UserDirs::parse(c.text, "/home/u"), (UserDirs{"/home/u/Desktop", c.pictures}));
    }
    EXPECT_EQ(UserDirs::parse("XDG_DESKTOP_DIR=\"$HOME\"", "/"), (UserDirs{"/", "/Pictures"}));

    lumivale::test::TempDir dir;
    const std::string home = dir.file("home");
    lumivale::test::writeFile(dir.file("config/user-dirs.dirs"), "XDG_PICTURES_DIR=\"$HOME/B\"\n");
    EXPECT_EQ(UserDirs::load(dir.file("config"), home), (UserDirs{home + "/Desktop", home + "/B"}));
    EXPECT_EQ(lumivale::configHomeFor("/home/u", "relative/conf"), "/home/u/.config");
    EXPECT_EQ(lumivale::configHomeFor("/home/u", "/etc/u/conf/"), "/etc/u/conf");
}

} // namespace
