#pragma once

#include "core/Date.h"

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// One picture file found by a folder listing.
struct FoundFile {
    std::string path;
    int64_t size = 0;
    Date created{};
    Date modified{};

    bool operator==(const FoundFile&) const = default;
};

namespace Folders {

// The extensions of the pictures that are listed, in lower case.
inline constexpr std::array<std::string_view, 10> imageExtensions{
    "png", "jpg", "jpeg", "heic", "heif", "tiff", "tif", "webp", "gif", "bmp"};

// Files of this many bytes or more are not listed.
inline constexpr int64_t maxBytes = 80'000'000;

// The extended attribute that macOS puts on the files its own capture tool writes; it survives
// copies to Linux file systems under the "user." namespace.
inline constexpr const char* screenCaptureAttribute =
    "user.com.apple.metadata:kMDItemIsScreenCapture";

// At most `limit` picture files under `path`, entering `depth` levels of sub-folders but none
// whose path is in `skipping`, each folder's entries taken in byte order of their names.
// Hidden files, links, empty files and files of `maxBytes` or more are left out; with
// `screenshotsOnly`, so is every file that `isScreenCapture` rejects. A folder that cannot be
// listed gives nothing. Names that are not UTF-8 cannot be kept in the library as they are, so
// such pictures and folders are left out too; `unnamed` gets their paths.
std::vector<FoundFile> list(const std::string& path, bool screenshotsOnly, int depth,
                            const std::set<std::string>& skipping, int64_t limit,
                            std::vector<std::string>* unnamed = nullptr);

// Whether the text is valid UTF-8.
bool isUtf8(std::string_view text);

// Whether the folder can be listed; a folder that does not exist counts as readable, one
// that exists but cannot be listed (no permission, or not a folder) does not.
bool canRead(const std::string& path);

// Whether the file is a screenshot: its name looks like one, or failing that it carries the
// screen-capture attribute with a value of at least one byte.
bool isScreenCapture(const std::string& path);

} // namespace Folders
} // namespace lumivale

template <> struct std::hash<lumivale::FoundFile> {
    size_t operator()(const lumivale::FoundFile& f) const noexcept {
        size_t h = std::hash<std::string>{}(f.path);
        for (const int64_t part : {f.size, int64_t(f.created.time_since_epoch().count()),
                                   int64_t(f.modified.time_since_epoch().count())})
            h = h * 1000003u ^ std::hash<int64_t>{}(part);
        return h;
    }
};
