#pragma once
// The desktop's shared thumbnail cache ($XDG_CACHE_HOME/thumbnails), kept as file managers keep
// it: one PNG per picture and size, named after the MD5 of the picture's URI, carrying the URI
// and the picture's modification time, so they reuse ours and we reuse theirs.

#include "core/Shot.h"
#include "core/Status.h"

#include <QImage>
#include <cstdint>
#include <optional>
#include <string>

namespace lumivale::ThumbnailCache {

// The cache's sizes, by folder: "normal", "large", "x-large", "xx-large".
enum class Size { normal, large, xLarge, xxLarge };
// The longest side a thumbnail of this size may have: 128, 256, 512 or 1024 pixels.
int longestSideOf(Size size);

// The facts of a picture file that a thumbnail is checked against.
struct Stamp {
    int64_t mtime = 0; // whole seconds
    int64_t size = 0;  // bytes
};
// The picture's modification time and size; none when nothing can be read at that path.
std::optional<Stamp> stampOf(const std::string& picture);

// Whether a shot's thumbnail may go to the shared cache: only once reading has shown that it
// is not private.
inline bool mayShare(const Shot& shot) { return shot.isRead() && !shot.isSensitive(); }

// The URI that names a picture: "file://" and its percent-encoded absolute path.
std::string uriOf(const std::string& picture);
// Where the thumbnail of a picture for a size is kept, whether it exists or not.
std::string pathOf(const std::string& picture, Size size);
// Where this program records that a picture cannot be read.
std::string failurePathOf(const std::string& picture);

// The cached thumbnail of this size when it belongs to the picture as stamped (URI, whole-second
// modification time and, when it carries one, size); a null image otherwise.
QImage lookUp(const std::string& picture, Size size, const Stamp& stamp);
// Whether this program recorded that the picture, as stamped, cannot be read.
bool hasFailed(const std::string& picture, const Stamp& stamp);

// Writes the thumbnail of a picture for a size: atomically, the file 0600, its folders 0700.
Status write(const std::string& picture, Size size, const Stamp& stamp, const QImage& thumbnail);
// Records that the picture, as stamped, cannot be read, so no one tries again until it changes.
Status writeFailure(const std::string& picture, const Stamp& stamp);
// Removes every size's thumbnail and every failure record of a picture, whichever program wrote
// them, so no readable copy of it is left in the cache. Called once the picture has left its
// place, it also undoes a thumbnail being written at that moment.
void forget(const std::string& picture);

// Where a thumbnail came from.
enum class Origin { cache, picture, failed };
struct Thumbnail {
    QImage image; // null when failed
    Origin origin = Origin::failed;
};
// The large thumbnail of a picture: the cached one when it is valid, else one made from the
// picture. With `share`, a made one is written to the cache (large and normal), and a picture
// that cannot be read is recorded as such; without it, nothing is written.
Thumbnail obtain(const std::string& picture, bool share);

} // namespace lumivale::ThumbnailCache
