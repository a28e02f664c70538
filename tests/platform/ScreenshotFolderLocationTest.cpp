#include "platform/ScreenshotFolderLocation.h"

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

// Installs gnome-screenshot's schema (the one key that matters, as the real schema declares it)
// into a private schema folder, with settings kept in a key file of the test's private home.
// GLib reads these variables once per process, so this happens before any test runs.
class GnomeScreenshotSchema : public ::testing::Environment {
    void SetUp() override {
        const fs::path dir = fs::path(std::getenv("LUMIVALE_TEST_ROOT")) / "schemas";
        writeFile((dir / "org.gnome.gnome-screenshot.gschema.xml").string(),
                  R"(<schemalist>
  <schema id="org.gnome.gnome-screenshot" path="/org/gnome/gnome-screenshot/">
    <key name="auto-save-directory" type="s"><default>''</default></key>
    <key name="take-window-shot" type="b"><default>false</default></key>
  </schema>
</schemalist>
)");
        const std::string compile = "glib-compile-schemas '" + dir.string() + "' >/dev/null 2>&1";
        ASSERT_EQ(std::system(compile.c_str()), 0) << "glib-compile-schemas (libglib2.0-bin)";
        setenv("GSETTINGS_SCHEMA_DIR", dir.c_str(), 1);
        setenv("GSETTINGS_BACKEND", "keyfile", 1);
    }
};
const auto* const schemaEnvironment =
    ::testing::AddGlobalTestEnvironment(new GnomeScreenshotSchema);

// Sets gnome-screenshot's save folder, as its preferences would.
void setGnomeLocation(const std::string& value) {
    GSettings* settings = g_settings_new("org.gnome.gnome-screenshot");
    g_settings_set_string(settings, "auto-save-directory", value.c_str());
    g_settings_sync();
    g_object_unref(settings);
}

// Each tool's settings file, relative to home.
const std::string rc = ".config/spectaclerc";
const std::string fl = ".config/flameshot/flameshot.ini";
const std::string xf = ".config/xfce4/xfce4-screenshooter";
const std::string spectacle6 = "[ImageSave]\nimageSaveLocation=file://{home}/Spectacle6/\n";
const std::string spectacle5 =
    "[General]\nx=1\n\n[Save]\ndefaultSaveLocation=file://{home}/Spectacle5/\n";
const std::string flameshot = "[General]\nsavePath={home}/Flame\nsavePathFixed=true\n";
const std::string xfce = "app=gimp\nscreenshot_dir=file://{home}/Xfce\nenable_imgur_upload=false\n";
const std::string fallback = "Pictures/Screenshots";

TEST(ScreenshotFolderLocationTest, ReadsEachToolsSettingInTurn) {
    const struct {
        std::string name;
        std::map<std::string, std::string> files;
        bool kde;
        std::string expected;   // relative to home
        std::string gnome = ""; // gnome-screenshot's setting
    } cases[] = {
        {"no settings: the Pictures folder's Screenshots", {}, false, fallback},
        {"the Pictures folder that user-dirs names",
         {{".config/user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/My Shots\"\n"}},
         false,
         "My Shots/Screenshots"},
        {"Spectacle of Plasma 6", {{rc, spectacle6}}, true, "Spectacle6"},
        {"an empty Plasma 6 entry leaves Plasma 5's",
         {{rc, "[ImageSave]\nimageSaveLocation=\n" + spectacle5}},
         true,
         "Spectacle5"},
        {"Spectacle outside a KDE session is not asked", {{rc, spectacle6}}, false, fallback},
        {"a KDE entry expanded from $HOME",
         {{rc, "[ImageSave]\nimageSaveLocation[$e]=$HOME/Spectacle6\n"}},
         true,
         "Spectacle6"},
        {"a KDE entry with an escaped space",
         {{rc, "[ImageSave]\nimageSaveLocation=file://{home}/My\\sShots/\n"}},
         true,
         "My Shots"},
        {"Flameshot with a quoted path",
         {{fl, "[General]\nsavePath=\"{home}/Flame, shots/\"\n"}},
         false,
         "Flame, shots"},
        {"Xfce screenshooter", {{xf, xfce}}, false, "Xfce"},
        {"in a KDE session Spectacle comes first",
         {{rc, spectacle6}, {fl, flameshot}, {xf, xfce}},
         true,
         "Spectacle6"},
        {"Flameshot before Xfce", {{rc, spectacle6}, {fl, flameshot}, {xf, xfce}}, false, "Flame"},
        {"the first setting decides even when its folder is gone",
         {{fl, "[General]\nsavePath={home}/Gone\n"}, {xf, xfce}},
         false,
         fallback},
        {"a relative setting is not trusted", {{xf, "screenshot_dir=Xfce\n"}}, false, fallback},
        {"gnome-screenshot with a URL", {}, false, "Gnome", "file://{home}/Gnome/"},
        {"Xfce before gnome-screenshot", {{xf, xfce}}, false, "Xfce", "file://{home}/Gnome"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        // A home with the folders that settings may name; "{home}" in the texts stands for it.
        const TempDir dir;
        const std::string home = dir.file("home");
        for (const char* folder :
             {"Spectacle6", "Spectacle5", "Flame", "Flame, shots", "Xfce", "Gnome", "My Shots"})
            fs::create_directories(home + "/" + folder);
        const auto withHome = [&](std::string text) {
            for (size_t at = text.find("{home}"); at != std::string::npos; at = text.find("{home}"))
                text.replace(at, 6, home);
            return text;
        };
        for (const auto& [name, text] : c.files)
            writeFile(home + "/" + name, withHome(text));
        setGnomeLocation(withHome(c.gnome));
        setenv("XDG_CONFIG_HOME", (home + "/.config").c_str(), 1);
        if (c.kde)
            setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
        else
            unsetenv("XDG_CURRENT_DESKTOP");
        EXPECT_EQ(ScreenshotFolder::current(home), home + "/" + c.expected);
    }
}

} // namespace
