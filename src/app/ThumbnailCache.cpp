#include "app/ThumbnailCache.h"

#include "app/ThumbnailMaker.h"
#include "core/FileOps.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QImageReader>
#include <QUrl>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <glib.h>
#include <sys/stat.h>
#include <vector>

namespace lumivale::ThumbnailCache {

namespace {

constexpr std::array sizeFolders{"normal", "large", "x-large", "xx-large"};
const std::string failureFolder = "fail/lumivale-" LUMIVALE_VERSION;

std::string root() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache && cache[0] == '/') return std::string(cache) + "/thumbnails";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.cache/thumbnails";
}

std::string folderOf(Size size) {
    return root() + "/" + sizeFolders[static_cast<size_t>(size)];
}

std::string absolutePathOf(const std::string& picture) {
    return std::filesystem::absolute(picture).lexically_normal();
}

// The ways programs spell a picture's URI: ours (Qt's, as KDE's programs spell it) and GLib's
// (GNOME's and Xfce's), which also escapes ";", "[" and "]".
std::vector<std::string> spellingsOf(const std::string& picture) {
    std::vector<std::string> uris{uriOf(picture)};
    if (char* glib = g_filename_to_uri(absolutePathOf(picture).c_str(), nullptr, nullptr)) {
        if (uris.front() != glib) uris.emplace_back(glib);
        g_free(glib);
    }
    return uris;
}

std::string fileNameOf(const std::string& uri) {
    return QCryptographicHash::hash(QByteArray::fromStdString(uri), QCryptographicHash::Md5)
               .toHex()
               .toStdString() +
           ".png";
}

// Makes the folders below the cache root that do not exist yet, private to the user as the
// cache's folders must be.
Status makePrivateFolders(const std::string& folder) {
    const std::filesystem::path base(root());
    std::filesystem::path at = base.parent_path();
    if (Status made = makeFolders(at); !made) return made;
    for (const auto& part : std::filesystem::path(folder).lexically_relative(at)) {
        at /= part;
        if (mkdir(at.c_str(), 0700) != 0 && errno != EEXIST)
            return Status::failure(describeErrno(errno), errno);
    }
    return Status::ok();
}

// A cache file, with its keys, when it describes the picture as stamped.
QImage validImage(const std::string& file, const std::string& uri, const Stamp& stamp) {
    QImageReader reader(QString::fromStdString(file), "png");
    reader.setAutoTransform(false);
    const QImage image = reader.read();
    if (image.isNull()) return {};
    if (image.text("Thumb::URI").toStdString() != uri) return {};
    // Other programs may write a fractional time: whole seconds are compared.
    bool number = false;
    const double mtime = image.text("Thumb::MTime").toDouble(&number);
    if (!number || static_cast<int64_t>(std::floor(mtime)) != stamp.mtime) return {};
    const QString size = image.text("Thumb::Size");
    if (!size.isEmpty() && size.toLongLong() != stamp.size) return {};
    return image;
}

Status writePng(const std::string& file, QImage image, const std::string& picture,
                const Stamp& stamp) {
    image.setText("Thumb::URI", QString::fromStdString(uriOf(picture)));
    image.setText("Thumb::MTime", QString::number(stamp.mtime));
    image.setText("Thumb::Size", QString::number(stamp.size));
    image.setText("Software", "Lumivale " LUMIVALE_VERSION);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) return Status::failure("the thumbnail could not be encoded");
    const std::string folder = std::filesystem::path(file).parent_path();
    if (Status made = makePrivateFolders(folder); !made) return made;
    // The temporary file is made 0600, and keeps that mode when it is renamed into place.
    return writeAtomically(file, std::string_view(bytes.constData(), bytes.size()));
}

// The image within `longest` pixels, in the form Qt paints fastest.
QImage fitted(const QImage& image, int longest) {
    const QImage within =
        image.width() > longest || image.height() > longest
            ? image.scaled(longest, longest, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : image;
    return within.convertToFormat(within.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                           : QImage::Format_RGB32);
}

} // namespace

int longestSideOf(Size size) {
    return 128 << static_cast<int>(size);
}

std::optional<Stamp> stampOf(const std::string& picture) {
    struct stat info {};
    if (stat(picture.c_str(), &info) != 0) return std::nullopt;
    return Stamp{static_cast<int64_t>(info.st_mtim.tv_sec), static_cast<int64_t>(info.st_size)};
}

std::string uriOf(const std::string& picture) {
    return QUrl::fromLocalFile(QString::fromStdString(absolutePathOf(picture)))
        .toEncoded()
        .toStdString();
}

std::string pathOf(const std::string& picture, Size size) {
    return folderOf(size) + "/" + fileNameOf(uriOf(picture));
}

std::string failurePathOf(const std::string& picture) {
    return root() + "/" + failureFolder + "/" + fileNameOf(uriOf(picture));
}

QImage lookUp(const std::string& picture, Size size, const Stamp& stamp) {
    for (const std::string& uri : spellingsOf(picture))
        if (QImage image = validImage(folderOf(size) + "/" + fileNameOf(uri), uri, stamp);
            !image.isNull())
            return image;
    return {};
}

bool hasFailed(const std::string& picture, const Stamp& stamp) {
    return !validImage(failurePathOf(picture), uriOf(picture), stamp).isNull();
}

Status write(const std::string& picture, Size size, const Stamp& stamp, const QImage& thumbnail) {
    return writePng(pathOf(picture, size), thumbnail, picture, stamp);
}

Status writeFailure(const std::string& picture, const Stamp& stamp) {
    QImage mark(1, 1, QImage::Format_ARGB32);
    mark.fill(Qt::transparent);
    return writePng(failurePathOf(picture), mark, picture, stamp);
}

void forget(const std::string& picture) {
    std::vector<std::string> folders;
    for (Size size : {Size::normal, Size::large, Size::xLarge, Size::xxLarge})
        folders.push_back(folderOf(size));
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(root() + "/fail", ec))
        folders.push_back(entry.path());
    for (const std::string& uri : spellingsOf(picture))
        for (const std::string& folder : folders)
            unlink((folder + "/" + fileNameOf(uri)).c_str());
}

Thumbnail obtain(const std::string& picture, bool share) {
    const std::optional<Stamp> stamp = stampOf(picture);
    if (!stamp) return {};
    // A larger one another program made serves as well, reduced.
    for (Size size : {Size::large, Size::xLarge, Size::xxLarge})
        if (QImage cached = lookUp(picture, size, *stamp); !cached.isNull())
            return {fitted(cached, longestSideOf(Size::large)), Origin::cache};
    if (hasFailed(picture, *stamp)) return {};
    QImage made = makeThumbnail(picture, longestSideOf(Size::large));
    if (made.isNull()) {
        if (share) writeFailure(picture, *stamp);
        return {};
    }
    if (share) {
        write(picture, Size::large, *stamp, made);
        QImage smaller = fitted(made, longestSideOf(Size::normal));
        for (const char* key : {"Thumb::Image::Width", "Thumb::Image::Height"})
            smaller.setText(key, made.text(key));
        write(picture, Size::normal, *stamp, smaller);
        // A picture locked away meanwhile is moved first and forgotten after: whichever of
        // that and these writes comes last, no thumbnail of it stays.
        if (!stampOf(picture)) forget(picture);
    }
    return {std::move(made), Origin::picture};
}

} // namespace lumivale::ThumbnailCache
