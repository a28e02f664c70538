#include "platform/ScreenshotFolderLocation.h"

// GLib before Qt: Qt's "signals" keyword would break GLib's headers.
// clang-format off
#include <gio/gio.h>
// clang-format on

#include "core/Characters.h"
#include "core/ScreenshotFolder.h"
#include "core/UserDirs.h"
#include "platform/UserFolders.h"

#include <QSettings>
#include <QString>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>

namespace lumivale::ScreenshotFolder {
namespace {

std::string fileText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    if (in) text << in.rdbuf();
    return text.str();
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// A value as KDE's configuration files escape it: "\s" for a space, "\t", "\n", "\r", "\\",
// "\xHH" for a byte, and a backslash before any other character keeps that character.
std::string unescaped(std::string_view value) {
    std::string out;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            out += value[i];
            continue;
        }
        const char c = value[++i];
        switch (c) {
        case 's':
            out += ' ';
            break;
        case 't':
            out += '\t';
            break;
        case 'n':
            out += '\n';
            break;
        case 'r':
            out += '\r';
            break;
        case 'x':
            if (i + 2 < value.size() && hexDigit(value[i + 1]) >= 0 &&
                hexDigit(value[i + 2]) >= 0) {
                out += static_cast<char>(hexDigit(value[i + 1]) * 16 + hexDigit(value[i + 2]));
                i += 2;
            } else {
                out += c;
            }
            break;
        default:
            out += c;
        }
    }
    return out;
}

// "$HOME" and "${HOME}" replaced by home, for entries marked "[$e]" (shell expansion).
std::string expandedHome(std::string value, const std::string& home) {
    for (const std::string_view variable :
         {std::string_view("${HOME}"), std::string_view("$HOME")}) {
        for (size_t at = value.find(variable); at != std::string::npos;
             at = value.find(variable, at + home.size()))
            value.replace(at, variable.size(), home);
    }
    return value;
}

// The last value of `key` in `group` of a KDE-style configuration text (`[Group]` lines,
// `key=value` entries, "#" comments); a localised entry ("key[de]=") is not the key's value.
std::optional<std::string> kconfigValue(std::string_view text, std::string_view group,
                                        std::string_view key, const std::string& home) {
    std::optional<std::string> found;
    std::string current;
    std::istringstream lines{std::string(text)};
    for (std::string raw; std::getline(lines, raw);) {
        const std::string_view line = trimmed(raw);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[') {
            const size_t close = line.find(']');
            current = close == std::string_view::npos ? "" : line.substr(1, close - 1);
            continue;
        }
        if (current != group) continue;
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        std::string_view name = trimmed(line.substr(0, equals));
        std::string_view flags;
        if (const size_t bracket = name.find('['); bracket != std::string_view::npos) {
            flags = name.substr(bracket + 1);
            name = name.substr(0, bracket);
            if (!flags.starts_with('$')) continue;
        }
        if (name != key) continue;
        std::string value = unescaped(trimmed(line.substr(equals + 1)));
        if (flags.find('e') != std::string_view::npos) value = expandedHome(std::move(value), home);
        found = std::move(value);
    }
    return found;
}

std::optional<std::string> nonEmpty(std::optional<std::string> value) {
    if (!value || trimmed(*value).empty()) return std::nullopt;
    return value;
}

std::optional<std::string> spectacleLocation(const std::string& home,
                                             const std::string& configHome) {
    const std::string text = fileText(configHome + "/spectaclerc");
    if (auto plasma6 = nonEmpty(kconfigValue(text, "ImageSave", "imageSaveLocation", home)))
        return plasma6;
    return nonEmpty(kconfigValue(text, "Save", "defaultSaveLocation", home));
}

std::optional<std::string> flameshotLocation(const std::string& configHome) {
    // Flameshot writes its settings with QSettings, so QSettings reads its quoting back; keys
    // of the [General] group are top-level keys there.
    const QSettings settings(QString::fromStdString(configHome + "/flameshot/flameshot.ini"),
                             QSettings::IniFormat);
    const QVariant value = settings.value(QStringLiteral("savePath"));
    if (!value.isValid()) return std::nullopt;
    return nonEmpty(value.toString().toStdString());
}

std::optional<std::string> xfceLocation(const std::string& configHome) {
    // The screenshooter's file is a list of key=value lines; its group does not matter.
    std::optional<std::string> found;
    std::istringstream lines{fileText(configHome + "/xfce4/xfce4-screenshooter")};
    constexpr std::string_view key = "screenshot_dir=";
    for (std::string raw; std::getline(lines, raw);)
        if (const std::string_view line = trimmed(raw); line.starts_with(key))
            found = std::string(trimmed(line.substr(key.size())));
    return nonEmpty(found);
}

std::optional<std::string> gnomeScreenshotLocation() {
    constexpr const char* schemaId = "org.gnome.gnome-screenshot";
    constexpr const char* keyName = "auto-save-directory";
    // Without the schema, GSettings would abort the program rather than answer.
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    if (!source) return std::nullopt;
    GSettingsSchema* schema = g_settings_schema_source_lookup(source, schemaId, TRUE);
    if (!schema) return std::nullopt;
    std::optional<std::string> found;
    if (g_settings_schema_has_key(schema, keyName)) {
        GSettingsSchemaKey* key = g_settings_schema_get_key(schema, keyName);
        if (g_variant_type_equal(g_settings_schema_key_get_value_type(key),
                                 G_VARIANT_TYPE_STRING)) {
            GSettings* settings = g_settings_new_full(schema, nullptr, nullptr);
            gchar* value = g_settings_get_string(settings, keyName);
            found = nonEmpty(std::string(value));
            g_free(value);
            g_object_unref(settings);
        }
        g_settings_schema_key_unref(key);
    }
    g_settings_schema_unref(schema);
    return found;
}

} // namespace

std::optional<std::string> storedLocation(const std::string& home, const std::string& configHome,
                                          bool kdeSession) {
    if (kdeSession)
        if (auto location = spectacleLocation(home, configHome)) return location;
    if (auto location = flameshotLocation(configHome)) return location;
    if (auto location = xfceLocation(configHome)) return location;
    return gnomeScreenshotLocation();
}

std::string locate(const std::string& home, const std::string& configHome, bool kdeSession) {
    const UserDirs dirs = UserDirs::load(configHome, home);
    return resolve(storedLocation(home, configHome, kdeSession), home, isFolder,
                   defaultFolder(dirs));
}

bool isKdeSession(const char* xdgCurrentDesktop) {
    return xdgCurrentDesktop &&
           std::string_view(xdgCurrentDesktop).find("KDE") != std::string_view::npos;
}

std::string current(const std::string& home) {
    return locate(home, UserFolders::configHome(home),
                  isKdeSession(std::getenv("XDG_CURRENT_DESKTOP")));
}

} // namespace lumivale::ScreenshotFolder
