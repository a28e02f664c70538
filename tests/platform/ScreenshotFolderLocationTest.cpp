#include "platform/ScreenshotFolderLocation.h"

#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <map>

namespace fs = std::filesystem;
namespace ScreenshotFolder = lumivale::ScreenshotFolder;
using lumivale::test::TempDir;
using lumivale::test::writeFile;

namespace {

// Each tool's settings file, relative to home, and settings in it ("{home}" stands for home).
const std::string rc = ".config/spectaclerc";
const std::string fl = ".config/flameshot/flameshot.ini";
const std::string xf = ".config/xfce4/xfce4-screenshooter";
const std::string spectacle6 = "[ImageSave]\nimageSaveLocation=file://{home}/Spectacle6/\n";
const std::string spectacle5 =
    "[ImageSave]\nimageSaveLocation=\n[Save]\ndefaultSaveLocation={home}/Spectacle5\n";
const std::string kdeExpanded = "[ImageSave]\nimageSaveLocation[$e]=$HOME/My\\sShots/\n";
const std::string flameshot = "[General]\nsavePath=\"{home}/Flame, shots/\"\nsavePathFixed=true\n";
const std::string flameshotGone = "[General]\nsavePath={home}/Gone\n"; // a file, not a folder
const std::string xfce = "app=gimp\nscreenshot_dir=file://{home}/Xfce\nenable_imgur_upload=false\n";
const std::map<std::string, std::string> allThree = {{rc, spectacle6}, {fl, flameshot}, {xf, xfce}};
const std::string fallback = "My Shots/Screenshots"; // in the Pictures folder that user-dirs names

TEST(ScreenshotFolderLocationTest, ReadsEachToolsSettingInTurn) {
    // gnome-screenshot's schema (its save folder's key, as the real schema declares it) in a
    // private schema folder, with settings kept in a key file; before GLib's first look.
    const TempDir schemas;
    writeFile(schemas.file("org.gnome.gnome-screenshot.gschema.xml"), R"(<schemalist>
  <schema id="org.gnome.gnome-screenshot" path="/org/gnome/gnome-screenshot/">
    <key name="auto-save-directory" type="s"><default>''</default></key>
  </schema>
</schemalist>
)");
    ASSERT_TRUE(lumivale::test::runShell("glib-compile-schemas '" + schemas.str() + "'"));
    setenv("GSETTINGS_SCHEMA_DIR", schemas.str().c_str(), 1);
    setenv("GSETTINGS_BACKEND", "keyfile", 1);
    const struct {
        std::string name;
        bool kde;
        std::string expected; // relative to home
        std::map<std::string, std::string> files;
        std::string gnome = ""; // gnome-screenshot's setting
    } cases[] = {
        {"no settings: the Pictures folder's Screenshots", false, fallback, {}},
        {"Plasma 5's entry under an empty Plasma 6 one", true, "Spectacle5", {{rc, spectacle5}}},
        {"a KDE entry with $HOME and an escaped space", true, "My Shots", {{rc, kdeExpanded}}},
        {"in a KDE session Spectacle comes first", true, "Spectacle6", allThree},
        {"else Flameshot, with a quoted path", false, "Flame, shots", allThree},
        {"the first setting decides", false, fallback, {{fl, flameshotGone}, {xf, xfce}}},
        {"gnome-screenshot with a URL", false, "Gnome", {}, "file://{home}/Gnome/"},
        {"Xfce before gnome-screenshot", false, "Xfce", {{xf, xfce}}, "file://{home}/Gnome"},
    };
    // A home with the folders that settings may name.
    const TempDir home;
    for (const char* folder :
         {"Spectacle6", "Spectacle5", "Flame, shots", "Xfce", "Gnome", "My Shots"})
        fs::create_directories(home.file(folder));
    writeFile(home.file("Gone"), "a file");
    const auto withHome = [&](std::string text) {
        for (size_t at = text.find("{home}"); at != std::string::npos; at = text.find("{home}"))
            text.replace(at, 6, home.str());
        return text;
    };
    setenv("XDG_CONFIG_HOME", home.file(".config").c_str(), 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(home.file(".config"));
        writeFile(home.file(".config/user-dirs.dirs"), "XDG_PICTURES_DIR=\"$HOME/My Shots\"\n");
        for (const auto& [name, text] : c.files)
            writeFile(home.file(name), withHome(text));
        GSettings* gnome = g_settings_new("org.gnome.gnome-screenshot"); // as its preferences do
        g_settings_set_string(gnome, "auto-save-directory", withHome(c.gnome).c_str());
        g_settings_sync();
        g_object_unref(gnome);
        setenv("XDG_CURRENT_DESKTOP", c.kde ? "KDE" : "ubuntu:GNOME", 1);
        EXPECT_EQ(ScreenshotFolder::current(home.str()), home.file(c.expected));
    }
}

} // namespace
