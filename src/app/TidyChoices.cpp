#include "app/TidyChoices.h"

#include <algorithm>
#include <filesystem>

namespace lumivale {

std::vector<ShotPtr> tidyCandidates(const AppModel& model, const TidyChoices& choices) {
    std::vector<ShotPtr> shots;
    switch (choices.scope) {
    case TidyScope::loose:
        for (const ShotPtr& shot : model.all())
            if (shot->folder() == model.paths().screenshotFolder)
                shots.push_back(shot);
        break;
    case TidyScope::view: shots = model.shots(model.place()); break;
    case TidyScope::everything:
        for (const ShotPtr& shot : model.all())
            if (shot->isRead())
                shots.push_back(shot);
        break;
    }
    if (choices.keepPrivate)
        std::erase_if(shots, [](const ShotPtr& s) { return s->isSensitive(); });
    return shots;
}

TidyPlan fileIntoFolders(const AppModel& model, const TidyChoices& choices) {
    const std::vector<ShotPtr> shots = tidyCandidates(model, choices);
    return Tidy::plan(shots, model.paths().archive, choices.layout, choices.rename, [](const std::string& path) {
        std::error_code ec;
        return std::filesystem::exists(std::filesystem::symlink_status(path, ec));
    });
}

std::vector<ShotPtr> clearOut(const AppModel& model, const TidyChoices& choices) {
    const Date cutoff = model.now() - std::chrono::seconds(int64_t{choices.days} * 86400);
    std::vector<ShotPtr> old;
    for (const ShotPtr& shot : tidyCandidates(model, choices))
        if (shot->isRead() && shot->date() < cutoff)
            old.push_back(shot);
    std::stable_sort(old.begin(), old.end(), [](const ShotPtr& a, const ShotPtr& b) { return a->date() < b->date(); });
    return old;
}

} // namespace lumivale
