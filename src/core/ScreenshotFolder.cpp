#include "core/ScreenshotFolder.h"

#include "core/Characters.h"

#include <filesystem>
#include <sys/stat.h>

namespace lumivale::ScreenshotFolder {
namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The percent-decoded path of a "file://" URL (host and any query or fragment dropped), or
// nothing when the URL does not parse: a broken escape or an escaped NUL.
std::optional<std::string> fileUrlPath(std::string_view url) {
    std::string_view rest = url.substr(std::string_view("file://").size());
    rest = rest.substr(0, rest.find_first_of("?#"));
    const size_t slash = rest.find('/');
    rest = slash == std::string_view::npos ? std::string_view{} : rest.substr(slash);
    std::string path;
    for (size_t i = 0; i < rest.size(); ++i) {
        if (rest[i] != '%') {
            path += rest[i];
            continue;
        }
        if (i + 2 >= rest.size()) return std::nullopt;
        const int high = hexDigit(rest[i + 1]), low = hexDigit(rest[i + 2]);
        if (high < 0 || low < 0 || (high == 0 && low == 0)) return std::nullopt;
        path += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return path;
}

// The path with "." and ".." pieces worked out and without repeated or trailing "/".
std::string standardised(const std::string& path) {
    std::string p = std::filesystem::path(path).lexically_normal().string();
    while (p.size() > 1 && p.back() == '/')
        p.pop_back();
    return p;
}

} // namespace

bool isFolder(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string defaultFolder(const UserDirs& dirs) {
    return dirs.pictures == "/" ? "/Screenshots" : dirs.pictures + "/Screenshots";
}

std::string resolve(std::optional<std::string> raw, const std::string& home,
                    const FolderTest& isFolder, const std::string& fallback) {
    if (!raw) return fallback;
    std::string value(trimmed(*raw));
    if (value.empty()) return fallback;
    if (value.starts_with("file://"))
        if (auto path = fileUrlPath(value)) value = std::move(*path);
    if (value == "~")
        value = home;
    else if (value.starts_with("~/"))
        value = home + value.substr(1);
    // A relative location is not trusted: it would depend on the working folder.
    if (!value.starts_with('/')) return fallback;
    while (value.size() > 1 && value.back() == '/')
        value.pop_back();
    return isFolder(value) ? value : fallback;
}

std::string displayName(const std::string& path, const std::string& home) {
    const std::string p = standardised(path);
    const std::string h = standardised(home);
    if (p.starts_with(h + "/")) {
        std::string name;
        size_t start = h.size() + 1;
        while (start <= p.size()) {
            size_t end = p.find('/', start);
            if (end == std::string::npos) end = p.size();
            if (end > start) {
                if (!name.empty()) name += " \u203A ";
                name += p.substr(start, end - start);
            }
            start = end + 1;
        }
        return name;
    }
    if (p == h) return "Home";
    return p;
}

bool isShared(const std::string& folder, const std::string& home, const UserDirs& dirs) {
    const std::string f = standardised(folder);
    return f == standardised(home) || f == standardised(dirs.desktop) ||
           f == standardised(dirs.pictures);
}

} // namespace lumivale::ScreenshotFolder
