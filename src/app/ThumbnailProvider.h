#pragma once

#include "app/ThumbnailCache.h"
#include "core/Shot.h"

#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <array>
#include <deque>
#include <list>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lumivale {

// The thumbnails of every view. Made on two background threads, from the desktop's shared
// thumbnail cache or from the picture, and kept in memory up to a fixed number of bytes, the
// least recently shown going first. Lives on the main thread.
class ThumbnailProvider : public QObject {
    Q_OBJECT
  public:
    // Keeps at most `memoryBytes` of pixels (the one shown last is always kept).
    explicit ThumbnailProvider(qint64 memoryBytes = 64 << 20, QObject* parent = nullptr);
    // Waits for the thumbnail being made, if any; queued work is dropped.
    ~ThumbnailProvider() override;

    // The shot's thumbnail (at most 256 pixels long), blurred if asked, at once when it is in
    // memory; otherwise a null image (or the one of the file as it was) while the work is queued,
    // and `ready` follows. Still null after `ready`: the file is not a picture. Thumbnails of
    // private shots, and of shots not read yet, are never written to the shared cache.
    QImage thumbnail(const Shot& shot, bool blurred);
    // Orders the queued work: what is on screen first, then what is near (asked for with
    // `thumbnail`, so that it is queued); queued work for any other path is dropped until a view
    // asks for it again.
    void prioritise(const std::vector<std::string>& onScreen, const std::vector<std::string>& near);
    // The bytes of pixels kept in memory now.
    qint64 bytesHeld() const { return held_; }

    // How many thumbnails asked for outside `prioritise` wait at most: while the grid scrolls
    // fast, the ones asked for last are made first, and those asked for pages ago are let go.
    static constexpr size_t waitingLimit = 256;

  signals:
    // The thumbnail of this path is ready: ask again.
    void ready(const QString& path);

  private:
    // What a thumbnail was asked for: the file as the shot records it, and whether its
    // thumbnail may go to the shared cache.
    struct Request {
        int64_t size = 0;
        Date modified{};
        bool share = false;
        bool blur = false;
    };
    struct Entry {
        Request made; // the request it answers
        QImage image, blurred;
        bool shared = false; // in the shared cache, or read from it
        std::list<std::string>::iterator recent;
    };
    struct Result {
        std::string path;
        Request request;
        ThumbnailCache::Thumbnail thumbnail;
        QImage blurred;
    };

    void queue(const std::string& path, const Request& request);
    void startMore();
    void deliver(Result result);
    void account(Entry& entry, qint64 sign);
    void trim();

    QThreadPool pool_;
    const qint64 budget_;
    qint64 held_ = 0;
    std::unordered_map<std::string, Entry> entries_;
    std::list<std::string> recent_; // most recently shown first
    // Queued work by rank: on screen, near, anything else (newest first); each path once across
    // all three.
    std::array<std::deque<std::string>, 3> queues_;
    std::unordered_map<std::string, Request> pending_;
    std::unordered_set<std::string> running_, onScreen_, near_;
};

} // namespace lumivale
