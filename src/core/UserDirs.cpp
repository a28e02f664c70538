#include "core/UserDirs.h"

#include <fstream>
#include <optional>
#include <sstream>

namespace lumivale {
namespace {

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// folder + rest, where rest is empty or begins with "/"; the root folder adds no slash of its own.
std::string joined(const std::string& folder, const std::string& rest) {
    if (folder == "/") return rest.empty() ? folder : rest;
    return folder + rest;
}

std::string_view trimmedLeft(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    return s;
}

// The value of one `XDG_NAME_DIR="…"` line, unescaped, or nothing when the line is another
// kind. Backslashes escape the character after them, as in the shell.
std::optional<std::string> quotedValue(std::string_view rest) {
    rest = trimmedLeft(rest);
    if (rest.empty() || rest.front() != '=') return std::nullopt;
    rest = trimmedLeft(rest.substr(1));
    const bool quoted = !rest.empty() && rest.front() == '"';
    if (quoted) rest.remove_prefix(1);
    std::string value;
    for (size_t i = 0; i < rest.size(); ++i) {
        const char c = rest[i];
        if (quoted && c == '"') break;
        if (!quoted && (c == ' ' || c == '\t' || c == '#')) break;
        if (c == '\\' && i + 1 < rest.size())
            value += rest[++i];
        else
            value += c;
    }
    return value;
}

// "$HOME/x" or "$HOME" relative to home, "/x" as it stands; anything else is not a folder the
// user-dirs file may name.
std::optional<std::string> expanded(const std::string& value, const std::string& home) {
    constexpr std::string_view homeVariable = "$HOME";
    if (value.starts_with(homeVariable)) {
        const std::string rest = value.substr(homeVariable.size());
        if (!rest.empty() && rest.front() != '/') return std::nullopt;
        return withoutTrailingSlashes(joined(home, rest));
    }
    if (value.starts_with('/')) return withoutTrailingSlashes(value);
    return std::nullopt;
}

} // namespace

UserDirs UserDirs::parse(std::string_view text, const std::string& home) {
    const std::string base = withoutTrailingSlashes(home);
    UserDirs dirs{joined(base, "/Desktop"), joined(base, "/Pictures")};
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        const std::string_view l = trimmedLeft(line);
        std::string* target = nullptr;
        std::string_view rest;
        if (l.starts_with("XDG_DESKTOP_DIR")) {
            target = &dirs.desktop;
            rest = l.substr(15);
        } else if (l.starts_with("XDG_PICTURES_DIR")) {
            target = &dirs.pictures;
            rest = l.substr(16);
        } else {
            continue;
        }
        if (const auto value = quotedValue(rest))
            if (const auto path = expanded(*value, base)) *target = *path;
    }
    return dirs;
}

UserDirs UserDirs::load(const std::string& configHome, const std::string& home) {
    std::ifstream in(configHome + "/user-dirs.dirs", std::ios::binary);
    std::ostringstream text;
    if (in) text << in.rdbuf();
    return parse(text.str(), home);
}

std::string configHomeFor(const std::string& home, const char* xdgConfigHome) {
    if (xdgConfigHome && xdgConfigHome[0] == '/') return withoutTrailingSlashes(xdgConfigHome);
    return joined(withoutTrailingSlashes(home), "/.config");
}

} // namespace lumivale
