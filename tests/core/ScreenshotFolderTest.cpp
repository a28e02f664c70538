#include "core/ScreenshotFolder.h"

#include "core/ScreenshotName.h"
#include "core/UserDirs.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>
#include <optional>
#include <set>

namespace ScreenshotFolder = lumivale::ScreenshotFolder;
namespace ScreenshotName = lumivale::ScreenshotName;
using lumivale::UserDirs;

namespace {

TEST(ScreenshotFolderTest, ResolvesStoredLocations) {
    const std::string home = "/Users/a";
    const std::string fallback = "/Users/a/Pictures/Screenshots";
    const std::set<std::string> folders = {"/",
                                           "/Users/a",
                                           "/Users/a/Pictures/Shots",
                                           "/Users/a/Shots",
                                           "/srv/My Shots",
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
        {"", fallback},
        {" \t\r\n ", fallback},
        {"  ~/Pictures/Shots/ \n", "/Users/a/Pictures/Shots"},
        {"file:///Users/a/Shots", "/Users/a/Shots"},
        {"file:///Users/a/Shots/", "/Users/a/Shots"},
        {"file://localhost/Users/a/Shots", "/Users/a/Shots"},
        {"file:///Users/a/Shots?view=list#top", "/Users/a/Shots"},
        {"file:///srv/My%20Shots", "/srv/My Shots"},
        {"file:///srv/My Shots/", "/srv/My Shots"},
        {"file:///srv/Bilder/%C3%9Cn%C3%AF", "/srv/Bilder/Ünï"},
        {"file:///srv/My%2", fallback},       // a broken escape: the URL does not parse
        {"file:///srv/My%00Shots", fallback}, // nor does an escaped NUL
        {"file://", fallback},
        {"Shots", fallback},
        {"./Shots", fallback},
        {"~user/Shots", fallback},
        {"/", "/"},
        {"///", "/"},
        {"~", "/Users/a"},
        {"~/", "/Users/a"},
        {"/Users/a/Shots//", "/Users/a/Shots"},
        {"/Users/a/Missing", fallback},
        {"~/Missing/", fallback},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.raw.value_or("(none)"));
        asked.clear();
        EXPECT_EQ(ScreenshotFolder::resolve(c.raw, home, isFolder, fallback), c.expected);
        // Only a clean absolute path is ever tested against the disk.
        for (const std::string& p : asked)
            EXPECT_TRUE(p.starts_with('/') && (p == "/" || !p.ends_with('/'))) << p;
    }
}

TEST(ScreenshotFolderTest, RealFolderTestAsksTheDisk) {
    lumivale::test::TempDir dir;
    lumivale::test::writeFile(dir.file("Shots/a.png"), "x");
    const std::string fallback = dir.file("fallback");
    const struct {
        std::string raw;
        std::string expected;
    } cases[] = {
        {dir.file("Shots") + "/", dir.file("Shots")},
        {"file://" + dir.file("Shots"), dir.file("Shots")},
        {dir.file("Shots/a.png"), fallback}, // a file is not a folder
        {dir.file("Gone"), fallback},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.raw);
        EXPECT_EQ(ScreenshotFolder::resolve(c.raw, dir.str(), ScreenshotFolder::isFolder, fallback),
                  c.expected);
    }
}

TEST(ScreenshotFolderTest, DisplayNamesAreRelativeToHome) {
    const struct {
        std::string path;
        std::string home;
        std::string expected;
    } cases[] = {
        {"/Users/a/Desktop/Shots", "/Users/a", "Desktop \u203A Shots"},
        {"/Users/a/Desktop", "/Users/a", "Desktop"},
        {"/Users/a", "/Users/a", "Home"},
        {"/Users/a/", "/Users/a", "Home"},
        {"/Users/a/Desktop", "/Users/a/", "Desktop"},
        {"/Users/a/Desktop//Shots/", "/Users/a", "Desktop \u203A Shots"},
        {"/Users/a/Desktop/../Pictures/./Shots", "/Users/a", "Pictures \u203A Shots"},
        {"/Users/a/Bilder/Bildschirmfotos 2024", "/Users/a", "Bilder \u203A Bildschirmfotos 2024"},
        {"/Users/ab/Shots", "/Users/a", "/Users/ab/Shots"},
        {"/Volumes/Disk/Shots", "/Users/a", "/Volumes/Disk/Shots"},
        {"/Users", "/Users/a", "/Users"},
        {"/", "/Users/a", "/"},
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
        {"/home/u", true},
        {"/home/u/", true},
        {"/home/u/Schreibtisch", true},
        {"/home/u/Bilder/", true},
        {"/home/u/Bilder/../Schreibtisch", true},
        {"/home/u/Bilder/Screenshots", false},
        {"/home/u/Desktop", false},
        {"/home/u/Pictures", false},
        {"/srv/shots", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder);
        EXPECT_EQ(ScreenshotFolder::isShared(c.folder, "/home/u", dirs), c.shared);
    }
    EXPECT_EQ(ScreenshotFolder::defaultFolder(dirs), "/home/u/Bilder/Screenshots");
}

TEST(ScreenshotNameTest, TheTableIsKeptFoldedAndInOrder) {
    const auto& prefixes = ScreenshotName::prefixes();
    ASSERT_EQ(prefixes.size(), 39u);
    EXPECT_EQ(prefixes.front(), "screenshot");
    EXPECT_EQ(prefixes.back(), "\uC2A4\uD06C\uB9B0\uC0F7"); // 스크린샷
    EXPECT_EQ(prefixes[32], prefixes[8]);                   // the repeated entry stays
    const struct {
        size_t index;
        std::string folded;
    } cases[] = {
        {6, "capture d'ecran"},
        {7, "capture d\u2019ecran"},
        // The final sigma folds to a plain one.
        {24, "\u03C3\u03C4\u03B9\u03B3\u03BC\u03B9\u03BF\u03C4\u03C5\u03C0\u03BF "
             "\u03BF\u03B8\u03BF\u03BD\u03B7\u03C3"},
        {25, "\u05E6\u05D9\u05DC\u05D5\u05DD \u05DE\u05E1\u05DA"},
        {26, "\u0644\u0642\u0637\u0629 \u0634\u0627\u0634\u0629"},
        // The viramas (non-spacing) go; the spacing vowel signs stay.
        {27, "\u0938\u0915\u0930\u0940\u0928\u0936\u0949\u091F"},
        // The Thai tone mark goes.
        {28, "\u0E20\u0E32\u0E1E\u0E2B\u0E19\u0E32\u0E08\u0E2D"},
        {29, "anh man hinh"},
        {33, "\u30B9\u30AF\u30EA\u30FC\u30F3\u30B7\u30E7\u30C3\u30C8"},
        {34, "\u622A\u5C4F"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        EXPECT_EQ(prefixes[c.index], c.folded);
    }
}

TEST(ScreenshotNameTest, OnlyTheStartOfTheFoldedNameCounts) {
    const struct {
        std::string name;
        bool screenshot;
    } cases[] = {
        {"Screenshot 2024-01-02 at 10.11.12.png", true},
        {"SCREENSHOT.png", true},
        {"Screen Shot 2019-05-06 at 1.02.03 PM.png", true},
        {"Screen Recording 2024-01-02.mov", true},
        {"CleanShot 2024-01-02.png", true},
        {"Simulator Screen Shot - iPhone 15.png", true},
        {"Bildschirmfoto 2024-01-02 um 10.11.12.png", true},
        {"Skärmavbild 2024-01-02 kl. 10.11.12.png", true},
        {"Capture d\u2019écran 2024-01-02.png", true},
        {"Capture d'écran 2024-01-02.png", true},
        {"Captura de ecrã 2024.png", true},
        {"Képernyőfotó 2024.png", true},
        {"Näyttökuva 2024.png", true},
        {"Snímek obrazovky 2024.png", true},
        {"Снимок экрана 2024-01-02.png", true},
        {"Знімок екрана 2024.png", true},
        {"Στιγμιότυπο οθόνης 2024-01-02.png", true},
        {"צילום מסך 2024-01-02.png", true},
        {"لقطة شاشة ٢٠٢٤-٠١-٠٢.png", true},
        {"स्क्रीनशॉट 2024-01-02.png", true},
        {"ภาพหน้าจอ 2567-01-02.png", true},
        {"Ảnh màn hình 2024-01-02.png", true},
        {"ảnh màn hình.png", true},
        {"スクリーンショット 2024-01-02.png", true},
        {"ｽｸﾘｰﾝｼｮｯﾄ 2024.png", true},       // half-width katakana
        {"ＳＣＲＥＥＮＳＨＯＴ.png", true}, // full-width letters
        {"截屏2024-01-02.png", true},
        {"屏幕快照 2024-01-02.png", true},
        {"截圖 2024-01-02.png", true},
        {"螢幕快照 2024.png", true},
        {"스크린샷 2024-01-02.png", true},
        // Korean as some file systems store it, in separate jamo.
        {"\u1109\u1173\u110F\u1173\u1105\u1175\u11AB\u1109\u1163\u11BA 2024.png", true},
        {"My screenshot.png", false},
        {"IMG_0001.png", false},
        {"Screen_shot.png", false},
        {"screensho.png", false},
        {" Screenshot.png", false},
        {"2024-01-02_10-11.png", false},
        {"截", false},
        {"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ScreenshotName::looksLikeScreenshot(c.name), c.screenshot);
    }
}

TEST(UserDirsTest, ParsesTheUserDirsFile) {
    const std::string home = "/home/u";
    const struct {
        std::string text;
        std::string desktop;
        std::string pictures;
    } cases[] = {
        {"", "/home/u/Desktop", "/home/u/Pictures"},
        {"# written by xdg-user-dirs-update\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
         "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\nXDG_PICTURES_DIR=\"$HOME/Bilder\"\n",
         "/home/u/Schreibtisch", "/home/u/Bilder"},
        {"XDG_PICTURES_DIR=\"/data/pics/\"", "/home/u/Desktop", "/data/pics"},
        {"XDG_DESKTOP_DIR=\"$HOME\"", "/home/u", "/home/u/Pictures"},
        {"XDG_PICTURES_DIR=\"$HOME/My \\\"Pics\\\" \\\\ x\"", "/home/u/Desktop",
         "/home/u/My \"Pics\" \\ x"},
        {"XDG_PICTURES_DIR=\"$HOME/Imágenes\"", "/home/u/Desktop", "/home/u/Imágenes"},
        {"XDG_PICTURES_DIR=$HOME/Fotos", "/home/u/Desktop", "/home/u/Fotos"},
        {"  XDG_PICTURES_DIR = \"$HOME/Fotos\"  # mine", "/home/u/Desktop", "/home/u/Fotos"},
        {"XDG_PICTURES_DIR=\"$HOME/One\"\nXDG_PICTURES_DIR=\"$HOME/Two\"", "/home/u/Desktop",
         "/home/u/Two"},
        // Forms that the file may not use leave the defaults.
        {"XDG_PICTURES_DIR=\"Pictures\"", "/home/u/Desktop", "/home/u/Pictures"},
        {"XDG_PICTURES_DIR=\"$HOMEY/x\"", "/home/u/Desktop", "/home/u/Pictures"},
        {"XDG_PICTURES_DIR=\"~/x\"", "/home/u/Desktop", "/home/u/Pictures"},
        {"# XDG_PICTURES_DIR=\"$HOME/No\"", "/home/u/Desktop", "/home/u/Pictures"},
        {"XDG_PICTURES_DIRS=\"$HOME/No\"", "/home/u/Desktop", "/home/u/Pictures"},
        {"XDG_PICTURES_DIR", "/home/u/Desktop", "/home/u/Pictures"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const UserDirs dirs = UserDirs::parse(c.text, home);
        EXPECT_EQ(dirs.desktop, c.desktop);
        EXPECT_EQ(dirs.pictures, c.pictures);
    }
    EXPECT_EQ(UserDirs::parse("", "/home/u/"), (UserDirs{"/home/u/Desktop", "/home/u/Pictures"}));
    EXPECT_EQ(UserDirs::parse("XDG_DESKTOP_DIR=\"$HOME\"", "/"), (UserDirs{"/", "/Pictures"}));
}

TEST(UserDirsTest, LoadsFromTheConfigurationFolder) {
    lumivale::test::TempDir dir;
    const std::string home = dir.file("home");
    EXPECT_EQ(UserDirs::load(dir.file("config"), home),
              (UserDirs{home + "/Desktop", home + "/Pictures"}));
    lumivale::test::writeFile(dir.file("config/user-dirs.dirs"),
                              "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
    EXPECT_EQ(UserDirs::load(dir.file("config"), home),
              (UserDirs{home + "/Desktop", home + "/Bilder"}));

    const struct {
        const char* xdg;
        std::string expected;
    } cases[] = {
        {nullptr, "/home/u/.config"},
        {"", "/home/u/.config"},
        {"relative/conf", "/home/u/.config"},
        {"/etc/u/conf/", "/etc/u/conf"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.xdg ? c.xdg : "(unset)");
        EXPECT_EQ(lumivale::configHomeFor("/home/u", c.xdg), c.expected);
    }
}

} // namespace
