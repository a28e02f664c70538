#include "platform/ScreenshotFolderLocation.h"

#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>

namespace fs = std::filesystem;
namespace ScreenshotFolder = lumivale::ScreenshotFolder;
using lumivale::test::TempDir;
using lumivale::test::writeFile;

namespace {

constexpr const char* gnomeSchema = "org.gnome.gnome-screenshot";
constexpr const char* gnomeKey = "auto-save-directory";

// Installs gnome-screenshot's schema (the one key that matters, as the real schema declares it)
// into a private schema folder, with settings kept in a key file of the test's private home.
// GLib reads these variables once per process, so this happens before any test runs.
class GnomeScreenshotSchema : public ::testing::Environment {
  public:
    static inline bool available = false;

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
        available = std::system(compile.c_str()) == 0 && fs::exists(dir / "gschemas.compiled");
        if (available) {
            setenv("GSETTINGS_SCHEMA_DIR", dir.c_str(), 1);
            setenv("GSETTINGS_BACKEND", "keyfile", 1);
        }
    }
};
const auto* const schemaEnvironment =
    ::testing::AddGlobalTestEnvironment(new GnomeScreenshotSchema);

// Sets (or, with nothing, resets) gnome-screenshot's save folder, as its preferences would.
void setGnomeLocation(const std::optional<std::string>& value) {
    GSettings* settings = g_settings_new(gnomeSchema);
    if (value)
        g_settings_set_string(settings, gnomeKey, value->c_str());
    else
        g_settings_reset(settings, gnomeKey);
    g_settings_sync();
    g_object_unref(settings);
}

// A home with the folders that settings may name; files are placed relative to it.
struct Home {
    TempDir dir;
    std::string path = dir.file("home");
    std::string config = path + "/.config";

    // Writes these files, relative to home, with "{home}" in their texts standing for it.
    explicit Home(const std::map<std::string, std::string>& files = {}) {
        for (const char* folder :
             {"Spectacle6", "Spectacle5", "Flame", "Flame, shots", "Xfce", "Gnome", "My Shots"})
            fs::create_directories(fs::path(path) / folder);
        for (const auto& [name, text] : files)
            writeFile(path + "/" + name, withHome(text));
    }
    std::string withHome(std::string text) const {
        for (size_t at = text.find("{home}"); at != std::string::npos; at = text.find("{home}", at))
            text.replace(at, 6, path);
        return text;
    }
};

struct LocationCase {
    std::string name;
    std::map<std::string, std::string> files;
    bool kde;
    std::string expected; // relative to home
    std::optional<std::string> gnome = std::nullopt;
};

void check(const std::vector<LocationCase>& cases) {
    for (const LocationCase& c : cases) {
        SCOPED_TRACE(c.name);
        const Home home(c.files);
        if (c.gnome) setGnomeLocation(home.withHome(*c.gnome));
        EXPECT_EQ(ScreenshotFolder::locate(home.path, home.config, c.kde),
                  home.path + "/" + c.expected);
        if (c.gnome) setGnomeLocation(std::nullopt);
    }
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

TEST(ScreenshotFolderLocationTest, ReadsEachToolsSetting) {
    check({
        {"no settings: the Pictures folder's Screenshots", {}, false, fallback},
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
    });
}

TEST(ScreenshotFolderLocationTest, ReadsGnomeScreenshotsSettingLast) {
    if (!GnomeScreenshotSchema::available)
        GTEST_SKIP() << "glib-compile-schemas (package libglib2.0-bin) is missing";
    check({
        {"gnome-screenshot with a URL", {}, false, "Gnome", "file://{home}/Gnome/"},
        {"an empty gnome-screenshot setting counts as none", {}, false, fallback, ""},
        {"Xfce before gnome-screenshot", {{xf, xfce}}, false, "Xfce", "file://{home}/Gnome"},
    });
}

TEST(ScreenshotFolderLocationTest, CurrentReadsThisSession) {
    const Home home({{rc, spectacle6}, {fl, flameshot}});
    setenv("XDG_CONFIG_HOME", home.config.c_str(), 1);
    setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
    EXPECT_TRUE(ScreenshotFolder::isKdeSession("KDE"));
    EXPECT_EQ(ScreenshotFolder::current(home.path), home.path + "/Spectacle6");
    unsetenv("XDG_CURRENT_DESKTOP");
    EXPECT_FALSE(ScreenshotFolder::isKdeSession(nullptr));
    EXPECT_EQ(ScreenshotFolder::current(home.path), home.path + "/Flame");
}

} // namespace
