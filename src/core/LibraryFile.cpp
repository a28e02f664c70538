// The library file: a binary property list decoded straight into shots, with no tree between.

#include "core/FileOps.h"
#include "core/Library.h"
#include "core/Plist.h"
#include "core/ShotCodec.h"

#include <algorithm>
#include <fcntl.h>
#include <future>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumivale {
namespace {

using plist::Document;
using plist::Ref;
using plist::Writer;

// A file mapped read-only, so that only the pages being decoded need to be in memory.
//
// A mapped file that another program cuts short while it is read would fault; the library file
// is Lumivale's own and is only ever replaced by renaming a new file over it, never rewritten in
// place, so the file mapped here keeps its size.
class MappedFile {
  public:
    // The whole file, or null when it cannot be opened, is not a regular file, or is empty.
    static std::unique_ptr<MappedFile> open(const std::string& path) {
        // Non-blocking, so a pipe put where the file should be cannot hang the start.
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (fd < 0) return nullptr;
        struct stat info {};
        void* at = MAP_FAILED;
        if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0)
            at = mmap(nullptr, static_cast<size_t>(info.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
        close(fd);
        if (at == MAP_FAILED) return nullptr;
        return std::unique_ptr<MappedFile>(
            new MappedFile(static_cast<uint8_t*>(at), static_cast<size_t>(info.st_size)));
    }
    ~MappedFile() { munmap(data_, size_); }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::span<const uint8_t> bytes() const { return {data_, size_}; }
    // Lets go of the pages read so far; any needed again are read back from the file.
    void release() const { madvise(data_, size_, MADV_DONTNEED); }

  private:
    MappedFile(uint8_t* data, size_t size) : data_(data), size_(size) {}
    uint8_t* data_;
    size_t size_;
};

// How many shots are decoded between releases of the mapped pages: a few megabytes of file.
constexpr size_t kShotsPerRelease = 2048;

std::optional<std::vector<std::string>> readPaths(const Document& doc, std::optional<Ref> ref) {
    const auto items = ref ? doc.array(*ref) : std::nullopt;
    if (!items) return std::nullopt;
    std::vector<std::string> paths;
    paths.reserve(items->size());
    for (Ref item : *items) {
        auto path = doc.string(item);
        if (!path) return std::nullopt;
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

// Room for every object's offset, so that building a large library never copies them.
void reserveFor(Writer& writer, const std::vector<const Shot*>& shots) {
    size_t objects = 64;
    for (const Shot* shot : shots)
        objects += 24 + 2 * shot->lines.size() + shot->barcodes.size();
    writer.reserve(0, objects);
}

} // namespace

std::optional<Library> Library::load(const std::string& file) {
    const auto mapped = MappedFile::open(file);
    const auto doc = mapped ? Document::open(mapped->bytes()) : std::nullopt;
    const auto top = doc ? doc->dict(doc->root()) : std::nullopt;
    if (!top) return std::nullopt;
    const auto versionRef = top->find("version");
    const auto version = versionRef ? doc->integer(*versionRef) : std::nullopt;
    if (version != currentVersion) return std::nullopt;
    const auto shotsRef = top->find("shots");
    const auto shots = shotsRef ? doc->dict(*shotsRef) : std::nullopt;
    auto extraFolders = readPaths(*doc, top->find("extraFolders"));
    auto skippedFolders = readPaths(*doc, top->find("skippedFolders"));
    if (!shots || !extraFolders || !skippedFolders) return std::nullopt;

    Library library;
    library.extraFolders = std::move(*extraFolders);
    library.skippedFolders = std::move(*skippedFolders);
    library.reserve(shots->size());
    // Indexing the search texts is a good part of the work: another thread does it a batch at a
    // time while the next batch is decoded.
    std::vector<std::future<std::vector<ShotPtr>>> indexed;
    std::vector<Shot> batch;
    const auto handOver = [&] {
        indexed.push_back(std::async(std::launch::async, [decoded = std::move(batch)]() mutable {
            std::vector<ShotPtr> ready;
            ready.reserve(decoded.size());
            for (Shot& shot : decoded) {
                shot.indexSearchText();
                ready.push_back(std::make_shared<const Shot>(std::move(shot)));
            }
            return ready;
        }));
        batch.clear();
    };
    for (size_t i = 0; i < shots->size(); ++i) {
        auto shot = readShot(*doc, shots->valueAt(i));
        // A shot filed under another path than its own means the file was not written by this
        // program: it is not trusted as a whole.
        if (!shot || !doc->keyEquals(shots->keyAt(i), shot->path)) return std::nullopt;
        batch.push_back(std::move(*shot));
        if (batch.size() == kShotsPerRelease) handOver();
        // The file is given back as it is decoded, so memory holds the shots and not the
        // file as well.
        if (i % kShotsPerRelease == kShotsPerRelease - 1) mapped->release();
    }
    handOver();
    // A path can come twice when two file names differ only in bytes that are not UTF-8, which
    // the file keeps as U+FFFD: the first stays.
    for (auto& ready : indexed)
        for (ShotPtr& shot : ready.get())
            library.add(std::move(shot));
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

    // The file goes to disk piece by piece as it is made, so it never sits in memory whole.
    AtomicFile out(file);
    Writer writer([&out](std::string_view piece) { out.append(piece); });
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
    out.append(writer.finish(writer.dict(top)));
    return out.commit();
}

} // namespace lumivale
