#include "app/TidyChoices.h"

#include "platform/UserFolders.h"

#include <QDir>

#include <algorithm>
#include <filesystem>

namespace lumivale {
namespace {

bool isLoose(const AppModel& model, const Shot& shot) { return shot.folder() == model.paths().screenshotFolder; }

} // namespace

std::string tidyScopeLabel(const AppModel& model, TidyScope scope) {
    const std::string home = QDir::homePath().toStdString();
    switch (scope) {
    case TidyScope::loose:
        return model.paths().screenshotFolder == UserFolders::dirs(home).desktop ? "Loose on the Desktop"
                                                                                 : "Loose in the screenshot folder";
    case TidyScope::view: return "This view (" + model.place().title(home) + ")";
    case TidyScope::everything: return "Everything read";
    }
    return {};
}

bool anyLoose(const AppModel& model) {
    return std::any_of(model.all().begin(), model.all().end(),
                       [&](const ShotPtr& shot) { return isLoose(model, *shot); });
}

std::vector<ShotPtr> tidyCandidates(const AppModel& model, const TidyChoices& choices) {
    std::vector<ShotPtr> shots;
    switch (choices.scope) {
    case TidyScope::loose:
        for (const ShotPtr& shot : model.all())
            if (isLoose(model, *shot))
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
