// The library file: a binary property list decoded straight into shots, with no tree between.

#include "core/FileOps.h"
#include "core/Library.h"
#include "core/Plist.h"
#include "core/ShotCodec.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace lumivale {
namespace {

using plist::Document;
using plist::Ref;
using plist::Writer;

struct FileBytes {
    std::unique_ptr<uint8_t[]> data;
    size_t size = 0;
    std::span<const uint8_t> span() const { return {data.get(), size}; }
};

// The whole file in one buffer (read, not mapped, so a file cut short by another program while
// it is read gives a short buffer, never a fault), or nothing when it cannot be read.
std::optional<FileBytes> readWhole(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    struct stat info {};
    std::optional<FileBytes> result;
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode)) {
        FileBytes bytes;
        bytes.data = std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(info.st_size));
        const auto wanted = static_cast<size_t>(info.st_size);
        bool failed = false;
        while (bytes.size < wanted) {
            const ssize_t n = read(fd, bytes.data.get() + bytes.size, wanted - bytes.size);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                failed = n < 0;
                break;
            }
            bytes.size += static_cast<size_t>(n);
        }
        if (!failed)
            result = std::move(bytes);
    }
    close(fd);
    return result;
}

std::optional<std::vector<std::string>> readPaths(const Document& doc, std::optional<Ref> ref) {
    const auto items = ref ? doc.array(*ref) : std::nullopt;
    if (!items)
        return std::nullopt;
    std::vector<std::string> paths;
    paths.reserve(items->size());
    for (Ref item : *items) {
        auto path = doc.string(item);
        if (!path)
            return std::nullopt;
        paths.push_back(std::move(*path));
    }
    return paths;
}

Ref writePaths(Writer& writer, const std::vector<std::string>& paths) {
    std::vector<Ref> items;
    items.reserve(paths.size());
    for (const std::string& path : paths)
        items.push_back(writer.string(path));
    return writer.array(items);
}

// Room for the whole file, over-counted a little (a string may take two bytes a character),
// so that building a large library never copies what is already written.
void reserveFor(Writer& writer, const std::vector<const Shot*>& shots) {
    size_t bytes = 1024, objects = 64;
    for (const Shot* shot : shots) {
        bytes += 4 * shot->path.size() + 2 * shot->folded.size() + 64 * shot->barcodes.size() + 400;
        objects += 24 + 6 * shot->lines.size() + shot->barcodes.size();
        for (const TextLine& line : shot->lines)
            bytes += 2 * line.text.size() + 128;
    }
    writer.reserve(bytes, objects);
}

} // namespace

std::optional<Library> Library::load(const std::string& file) {
    const auto bytes = readWhole(file);
    const auto doc = bytes ? Document::open(bytes->span()) : std::nullopt;
    const auto top = doc ? doc->dict(doc->root()) : std::nullopt;
    if (!top)
        return std::nullopt;
    const auto versionRef = top->find("version");
    const auto version = versionRef ? doc->integer(*versionRef) : std::nullopt;
    if (version != currentVersion)
        return std::nullopt;
    const auto shotsRef = top->find("shots");
    const auto shots = shotsRef ? doc->dict(*shotsRef) : std::nullopt;
    auto extraFolders = readPaths(*doc, top->find("extraFolders"));
    auto skippedFolders = readPaths(*doc, top->find("skippedFolders"));
    if (!shots || !extraFolders || !skippedFolders)
        return std::nullopt;

    Library library;
    library.extraFolders = std::move(*extraFolders);
    library.skippedFolders = std::move(*skippedFolders);
    library.shots.reserve(shots->size());
    for (size_t i = 0; i < shots->size(); ++i) {
        auto shot = readShot(*doc, shots->valueAt(i));
        // A shot filed under another path than its own, or a path filed twice, means the file
        // was not written by this program: it is not trusted as a whole.
        if (!shot || !doc->keyEquals(shots->keyAt(i), shot->path))
            return std::nullopt;
        std::string key = shot->path;
        auto value = std::make_shared<const Shot>(std::move(*shot));
        if (!library.shots.emplace(std::move(key), std::move(value)).second)
            return std::nullopt;
    }
    return library;
}

Status Library::write(const std::string& file, const std::vector<ShotPtr>& shots,
                      const std::vector<std::string>& extraFolders,
                      const std::vector<std::string>& skippedFolders) {
    // In path order, so the same library always gives the same bytes.
    std::vector<const Shot*> ordered;
    ordered.reserve(shots.size());
    for (const ShotPtr& shot : shots)
        ordered.push_back(shot.get());
    std::sort(ordered.begin(), ordered.end(),
              [](const Shot* a, const Shot* b) { return a->path < b->path; });

    Writer writer;
    reserveFor(writer, ordered);
    const Ref version = writer.integer(currentVersion);
    std::vector<std::pair<Ref, Ref>> entries;
    entries.reserve(ordered.size());
    for (const Shot* shot : ordered) {
        const Ref value = writeShot(writer, *shot);
        entries.emplace_back(writer.string(shot->path), value);
    }
    const Ref shotsRef = writer.dict(entries);
    const Ref extra = writePaths(writer, extraFolders);
    const Ref skipped = writePaths(writer, skippedFolders);
    const std::pair<Ref, Ref> top[] = {{writer.key("version"), version},
                                       {writer.key("shots"), shotsRef},
                                       {writer.key("extraFolders"), extra},
                                       {writer.key("skippedFolders"), skipped}};
    return writeAtomically(file, writer.finish(writer.dict(top)));
}

} // namespace lumivale
