#include "core/Library.h"

namespace lumivale {

const Shot* Library::find(std::string_view path) const {
    const auto it = index_.find(path);
    return it == index_.end() ? nullptr : shots_[it->second].get();
}

void Library::reserve(size_t count) {
    shots_.reserve(count);
    index_.reserve(count);
}

void Library::put(Shot shot) {
    auto stored = std::make_shared<const Shot>(std::move(shot));
    if (const auto it = index_.find(stored->path); it != index_.end())
        replaceAt(it->second, std::move(stored));
    else
        add(std::move(stored));
}

bool Library::add(ShotPtr shot) {
    const auto [it, added] = index_.try_emplace(shot->path, shots_.size());
    if (added) shots_.push_back(std::move(shot));
    return added;
}

// The old shot may outlive its place here (someone may hold it), so the key is moved over to
// the new shot's path before the old one is let go.
void Library::replaceAt(size_t at, ShotPtr shot) {
    auto node = index_.extract(shots_[at]->path);
    node.key() = shot->path;
    index_.insert(std::move(node));
    shots_[at] = std::move(shot);
}

bool Library::update(std::string_view path, const std::function<void(Shot&)>& edit) {
    const auto it = index_.find(path);
    if (it == index_.end()) return false;
    const size_t at = it->second;
    Shot copy = *shots_[at];
    edit(copy);
    copy.path = shots_[at]->path; // the key and the shot's path must agree
    replaceAt(at, std::make_shared<const Shot>(std::move(copy)));
    return true;
}

void Library::move(std::string_view from, const std::string& to) {
    const Shot* shot = find(from);
    if (!shot) return;
    Shot moved = *shot;
    remove(from);
    moved.path = to;
    moved.refold();
    put(std::move(moved));
}

// The last shot fills the hole, so removing costs the same wherever the shot stands.
bool Library::remove(std::string_view path) {
    const auto it = index_.find(path);
    if (it == index_.end()) return false;
    const size_t at = it->second;
    index_.erase(it);
    if (at + 1 != shots_.size()) {
        shots_[at] = std::move(shots_.back());
        index_.at(shots_[at]->path) = at;
    }
    shots_.pop_back();
    return true;
}

// Kept shots close ranks in their order; only those that moved are re-indexed.
int64_t Library::prune(const std::unordered_set<std::string>& keeping) {
    size_t kept = 0;
    for (size_t i = 0; i < shots_.size(); ++i) {
        if (!keeping.count(shots_[i]->path)) {
            index_.erase(shots_[i]->path);
            continue;
        }
        if (kept != i) {
            shots_[kept] = std::move(shots_[i]);
            index_.find(shots_[kept]->path)->second = kept;
        }
        ++kept;
    }
    const auto removed = static_cast<int64_t>(shots_.size() - kept);
    shots_.resize(kept);
    return removed;
}

} // namespace lumivale
