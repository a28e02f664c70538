#include "core/Folders.h"

#include "core/ScreenshotName.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unicode/utf8.h>
#include <unistd.h>
#include <unordered_set>

namespace lumivale::Folders {
namespace {

// The .hidden file of a folder is a short list of names; anything longer is not one.
constexpr size_t maxHiddenListBytes = 1 << 20;

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};
using OpenDir = std::unique_ptr<DIR, DirCloser>;

struct Entry {
    std::string name;
    unsigned char type; // DT_* from the listing, DT_UNKNOWN when the file system gives none
};

struct Walk {
    bool screenshotsOnly;
    const std::set<std::string>& skipping;
    size_t limit;
    std::vector<FoundFile>& found;
    std::vector<std::string>* unnamed;
};

std::string childPath(const std::string& folder, const std::string& name) {
    return folder == "/" ? folder + name : folder + "/" + name;
}

std::string_view nameOf(std::string_view path) {
    const size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

bool hasImageExtension(std::string_view name) {
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return false;
    std::string extension(name.substr(dot + 1));
    for (char& c : extension)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return std::ranges::find(imageExtensions, extension) != imageExtensions.end();
}

Date dateOf(const struct statx_timestamp& t) {
    return Date(std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec));
}

bool carriesScreenCaptureMark(const std::string& path) {
    return getxattr(path.c_str(), screenCaptureAttribute, nullptr, 0) > 0;
}

// The entries of an open folder, or nothing when reading it fails part-way.
std::optional<std::vector<Entry>> entriesOf(DIR* dir) {
    std::vector<Entry> entries;
    for (;;) {
        errno = 0;
        const dirent* d = readdir(dir);
        if (!d) break;
        const std::string_view name = d->d_name;
        if (name != "." && name != "..") entries.push_back({std::string(name), d->d_type});
    }
    if (errno != 0) return std::nullopt;
    return entries;
}

// The names listed one a line in the folder's .hidden file, which file managers leave out.
std::unordered_set<std::string> hiddenNames(int folder) {
    std::unordered_set<std::string> names;
    const int fd = openat(folder, ".hidden", O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return names;
    std::string text;
    char buffer[8192];
    ssize_t n;
    while (text.size() < maxHiddenListBytes && (n = read(fd, buffer, sizeof buffer)) != 0) {
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) break;
        text.append(buffer, static_cast<size_t>(n));
    }
    close(fd);
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string name = text.substr(start, end - start);
        if (!name.empty() && name.back() == '\r') name.pop_back();
        if (!name.empty()) names.insert(std::move(name));
        start = end + 1;
    }
    return names;
}

void walkFolder(Walk& walk, int parent, const std::string& name, const std::string& path, int depth,
                bool followLink);

// Lists one entry of an open folder: a sub-folder is entered, a picture file appended.
void visit(Walk& walk, int folder, const std::string& folderPath, const Entry& entry, int depth) {
    if (entry.type == DT_LNK || (entry.type == DT_DIR && depth <= 0)) return;
    if (entry.type == DT_REG && !hasImageExtension(entry.name)) return;
    struct statx st;
    if (statx(folder, entry.name.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
              STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_BTIME, &st) != 0 ||
        !(st.stx_mask & STATX_TYPE))
        return;
    const std::string path = childPath(folderPath, entry.name);
    const bool wanted =
        S_ISDIR(st.stx_mode) ? depth > 0 : S_ISREG(st.stx_mode) && hasImageExtension(entry.name);
    if (wanted && !isUtf8(entry.name)) {
        if (walk.unnamed) walk.unnamed->push_back(path);
        return;
    }
    if (S_ISDIR(st.stx_mode)) {
        if (depth > 0) walkFolder(walk, folder, entry.name, path, depth - 1, false);
        return;
    }
    if (!S_ISREG(st.stx_mode) || !hasImageExtension(entry.name) || !(st.stx_mask & STATX_SIZE))
        return;
    const auto size = static_cast<int64_t>(st.stx_size);
    if (size == 0 || size >= maxBytes) return;
    if (walk.screenshotsOnly && !ScreenshotName::looksLikeScreenshot(entry.name) &&
        !carriesScreenCaptureMark(path))
        return;
    const Date modified = (st.stx_mask & STATX_MTIME) ? dateOf(st.stx_mtime) : distantPast();
    // Where the file system keeps no birth time, the modification date stands in.
    const Date created = (st.stx_mask & STATX_BTIME) ? dateOf(st.stx_btime) : modified;
    walk.found.push_back({path, size, created, modified});
}

void walkFolder(Walk& walk, int parent, const std::string& name, const std::string& path, int depth,
                bool followLink) {
    if (walk.found.size() >= walk.limit || walk.skipping.contains(path)) return;
    const int fd = openat(parent, name.c_str(),
                          O_RDONLY | O_DIRECTORY | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW));
    if (fd < 0) return;
    const OpenDir dir(fdopendir(fd));
    if (!dir) {
        close(fd);
        return;
    }
    auto entries = entriesOf(dir.get());
    if (!entries) return;
    const bool hasHiddenList =
        std::ranges::any_of(*entries, [](const Entry& e) { return e.name == ".hidden"; });
    const auto hidden = hasHiddenList ? hiddenNames(fd) : std::unordered_set<std::string>{};
    std::erase_if(*entries, [&](const Entry& e) {
        return e.name.starts_with('.') || hidden.contains(e.name);
    });
    std::ranges::sort(*entries, {}, &Entry::name);
    for (const Entry& entry : *entries) {
        if (walk.found.size() >= walk.limit) return;
        visit(walk, fd, path, entry, depth);
    }
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

} // namespace

std::vector<FoundFile> list(const std::string& path, bool screenshotsOnly, int depth,
                            const std::set<std::string>& skipping, int64_t limit,
                            std::vector<std::string>* unnamed) {
    std::vector<FoundFile> found;
    if (limit <= 0 || path.empty()) return found;
    Walk walk{screenshotsOnly, skipping, static_cast<size_t>(limit), found, unnamed};
    const std::string folder = withoutTrailingSlashes(path);
    // The folder itself may be reached through a link (a Desktop linked elsewhere); only the
    // links inside it are never followed.
    walkFolder(walk, AT_FDCWD, folder, folder, depth, true);
    return found;
}

bool canRead(const std::string& path) {
    int error = 0;
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        error = errno;
    } else if (const OpenDir dir{fdopendir(fd)}; !dir) {
        error = errno;
        close(fd);
    } else if (!entriesOf(dir.get())) {
        error = errno;
    }
    if (error == 0) return true;
    if (error == EACCES || error == EPERM) return false;
    // A folder that has gone away yields nothing but is not unreadable; something else in
    // its place, or a folder that cannot be listed for another reason, is.
    struct stat st;
    return stat(path.c_str(), &st) != 0;
}

bool isUtf8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t i = 0; i < length;) {
        UChar32 c;
        U8_NEXT(bytes, i, length, c);
        if (c < 0) return false;
    }
    return true;
}

bool isScreenCapture(const std::string& path) {
    return ScreenshotName::looksLikeScreenshot(nameOf(path)) || carriesScreenCaptureMark(path);
}

} // namespace lumivale::Folders
