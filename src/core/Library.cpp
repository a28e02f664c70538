#include "core/Library.h"

namespace lumivale {

const Shot* Library::find(const std::string& path) const {
    const auto it = shots.find(path);
    return it == shots.end() ? nullptr : it->second.get();
}

void Library::put(Shot shot) {
    std::string key = shot.path;
    shots[std::move(key)] = std::make_shared<const Shot>(std::move(shot));
}

bool Library::update(const std::string& path, const std::function<void(Shot&)>& edit) {
    const auto it = shots.find(path);
    if (it == shots.end())
        return false;
    Shot copy = *it->second;
    edit(copy);
    copy.path = path; // the key and the shot's path must agree
    it->second = std::make_shared<const Shot>(std::move(copy));
    return true;
}

void Library::move(const std::string& from, const std::string& to) {
    const auto it = shots.find(from);
    if (it == shots.end())
        return;
    Shot shot = *it->second;
    shots.erase(it);
    shot.path = to;
    shot.refold();
    put(std::move(shot));
}

int64_t Library::prune(const std::unordered_set<std::string>& keeping) {
    int64_t removed = 0;
    for (auto it = shots.begin(); it != shots.end();) {
        if (keeping.count(it->first)) {
            ++it;
        } else {
            it = shots.erase(it);
            ++removed;
        }
    }
    return removed;
}

std::vector<ShotPtr> Library::all() const {
    std::vector<ShotPtr> out;
    out.reserve(shots.size());
    for (const auto& [path, shot] : shots)
        out.push_back(shot);
    return out;
}

} // namespace lumivale
