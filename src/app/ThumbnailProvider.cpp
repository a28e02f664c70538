#include "app/ThumbnailProvider.h"

#include "app/ThumbnailBlur.h"

#include <sys/resource.h>
#include <unistd.h>

namespace lumivale {
namespace {

// Thumbnail threads run at a lower priority than the window's own thread, so on a machine with
// few cores scrolling never waits for a picture being shrunk. (Linux gives each thread its own
// nice value.)
void yieldToTheWindow() {
    static thread_local bool done = false;
    if (!done) {
        setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 10);
        done = true;
    }
}

// What an entry costs beyond its pixels: its record, its path twice, the list node.
constexpr qint64 entryOverhead = 256;

} // namespace

ThumbnailProvider::ThumbnailProvider(qint64 memoryBytes, QObject* parent)
    : QObject(parent), budget_(memoryBytes) {
    pool_.setMaxThreadCount(2);
}

ThumbnailProvider::~ThumbnailProvider() {
    // Once no worker runs, no result can be posted to this object any more; those already
    // posted are discarded with it.
    pool_.clear();
    pool_.waitForDone();
}

QImage ThumbnailProvider::thumbnail(const Shot& shot, bool blurred) {
    const Request wanted{shot.size, shot.modified, ThumbnailCache::mayShare(shot),
                         blurred || shot.isSensitive()};
    const auto found = entries_.find(shot.path);
    if (found == entries_.end()) {
        queue(shot.path, wanted);
        return {};
    }
    Entry& entry = found->second;
    recent_.splice(recent_.begin(), recent_, entry.recent);
    const bool current = entry.made.size == wanted.size && entry.made.modified == wanted.modified;
    if (!current || (wanted.share && !entry.shared)) queue(shot.path, wanted);
    if (!blurred) return entry.image;
    if (entry.blurred.isNull() && !entry.image.isNull()) {
        account(entry, -1);
        entry.blurred = blurredThumbnail(entry.image);
        account(entry, +1);
    }
    const QImage image = entry.blurred;
    trim();
    return image;
}

void ThumbnailProvider::prioritise(const std::vector<std::string>& onScreen,
                                   const std::vector<std::string>& near) {
    onScreen_ = {onScreen.begin(), onScreen.end()};
    near_ = {near.begin(), near.end()};
    std::array<std::deque<std::string>, 3> queues;
    std::unordered_map<std::string, Request> kept;
    for (const auto& [paths, rank] : {std::pair{&onScreen, 0}, std::pair{&near, 1}})
        for (const std::string& path : *paths)
            if (auto node = pending_.extract(path)) {
                queues[rank].push_back(path);
                kept.insert(std::move(node));
            }
    queues_ = std::move(queues);
    pending_ = std::move(kept);
}

void ThumbnailProvider::queue(const std::string& path, const Request& request) {
    // A result on its way answers an older request at worst; the view asks again on `ready`.
    if (running_.count(path)) return;
    const auto [at, added] = pending_.try_emplace(path, request);
    if (added) {
        const int rank = onScreen_.count(path) ? 0 : near_.count(path) ? 1 : 2;
        if (rank < 2) {
            queues_[rank].push_back(path);
        } else {
            auto& others = queues_[2];
            others.push_front(path);
            if (others.size() > waitingLimit) {
                pending_.erase(others.back());
                others.pop_back();
            }
        }
    } else {
        at->second = {request.size, request.modified, request.share,
                      request.blur || at->second.blur};
    }
    startMore();
}

void ThumbnailProvider::startMore() {
    for (auto& queue : queues_) {
        while (!queue.empty() && static_cast<int>(running_.size()) < pool_.maxThreadCount()) {
            const std::string path = std::move(queue.front());
            queue.pop_front();
            const auto node = pending_.extract(path);
            if (!node) continue;
            running_.insert(path);
            pool_.start([this, path, request = node.mapped()] {
                yieldToTheWindow();
                Result result{path, request, ThumbnailCache::obtain(path, request.share), {}};
                if (request.blur) result.blurred = blurredThumbnail(result.thumbnail.image);
                QMetaObject::invokeMethod(
                    this,
                    [this, result = std::move(result)]() mutable { deliver(std::move(result)); },
                    Qt::QueuedConnection);
            });
        }
    }
}

void ThumbnailProvider::deliver(Result result) {
    running_.erase(result.path);
    auto [at, added] = entries_.try_emplace(result.path);
    Entry& entry = at->second;
    if (added) {
        recent_.push_front(result.path);
        entry.recent = recent_.begin();
    } else {
        account(entry, -1);
        recent_.splice(recent_.begin(), recent_, entry.recent);
    }
    entry.made = result.request;
    entry.image = std::move(result.thumbnail.image);
    entry.blurred = std::move(result.blurred);
    entry.shared = result.request.share || result.thumbnail.origin == ThumbnailCache::Origin::cache;
    account(entry, +1);
    trim();
    emit ready(QString::fromStdString(result.path));
    startMore();
}

void ThumbnailProvider::account(Entry& entry, qint64 sign) {
    held_ += sign * (entry.image.sizeInBytes() + entry.blurred.sizeInBytes() + entryOverhead +
                     2 * static_cast<qint64>(entry.recent->size()));
}

void ThumbnailProvider::trim() {
    while (held_ > budget_ && recent_.size() > 1) {
        const auto last = entries_.find(recent_.back());
        account(last->second, -1);
        entries_.erase(last);
        recent_.pop_back();
    }
}

} // namespace lumivale
