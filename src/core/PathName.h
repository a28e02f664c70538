#pragma once

// Taking apart and joining absolute paths held as strings, without touching the disk.

#include <string>
#include <string_view>

namespace lumivale {

// The folder part of a path ("/a/b.png" → "/a", "/b.png" → "/", "b.png" → "").
inline std::string_view parentPath(std::string_view path) {
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos) return {};
    return slash == 0 ? path.substr(0, 1) : path.substr(0, slash);
}

// The last component ("/a/b.png" → "b.png").
inline std::string_view lastComponent(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// The extension of a file name, without the dot: "b.tar.gz" → "gz". A leading or trailing dot
// does not start one (".hidden", "report.").
inline std::string_view extensionOf(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size()) return {};
    return name.substr(dot + 1);
}

// The name without its extension and the dot before it.
inline std::string_view baseOf(std::string_view name) {
    const std::string_view ext = extensionOf(name);
    return ext.empty() ? name : name.substr(0, name.size() - ext.size() - 1);
}

// folder + "/" + name, with exactly one slash between them.
inline std::string joinPath(std::string_view folder, std::string_view name) {
    std::string out(folder);
    while (out.size() > 1 && out.back() == '/')
        out.pop_back();
    if (out.empty() || out.back() != '/') out += '/';
    out += name;
    return out;
}

} // namespace lumivale
