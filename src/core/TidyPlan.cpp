#include "core/TidyPlan.h"

#include "core/PathName.h"
#include "core/Titles.h"

#include <algorithm>
#include <cctype>

namespace lumivale {
namespace {

struct LayoutInfo {
    std::string_view id, title;
};

constexpr std::array<LayoutInfo, 2> layoutInfo = {{
    {"byCategory", "One folder per shelf"},
    {"byCategoryAndMonth", "Shelf, then month"},
}};

std::string lowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

} // namespace

std::string_view tidyLayoutId(TidyLayout layout) {
    return layoutInfo[static_cast<size_t>(layout)].id;
}

std::string_view tidyLayoutTitle(TidyLayout layout) {
    return layoutInfo[static_cast<size_t>(layout)].title;
}

std::optional<TidyLayout> tidyLayoutFromId(std::string_view id) {
    for (TidyLayout layout : allTidyLayouts)
        if (tidyLayoutId(layout) == id) return layout;
    return std::nullopt;
}

std::string tidyLayoutFolder(TidyLayout layout, const Shot& shot, const std::string& root) {
    std::string folder = joinPath(root, shelfFolderName(shot.category()));
    if (layout == TidyLayout::byCategoryAndMonth)
        folder = joinPath(folder, Tidy::month(shot.date()));
    return folder;
}

} // namespace lumivale

namespace lumivale::Tidy {

std::string suggestedName(const Shot& shot) {
    std::string name(shelfShort(shot.category()));
    if (const auto title = Titles::of(shot, 40)) name += " – " + *title;
    name += " – " + day(shot.date());
    name = clean(name);
    // Extensions of other systems' files may be upper case ("IMG.PNG"); only ASCII ones matter.
    const std::string_view ext = extensionOf(shot.name());
    if (!ext.empty()) name += "." + lowerAscii(ext);
    return name;
}

TidyPlan plan(std::span<const ShotPtr> shots, const std::string& root, TidyLayout layout,
              bool rename, const ExistsTest& exists) {
    std::vector<const Shot*> ordered;
    ordered.reserve(shots.size());
    for (const ShotPtr& shot : shots)
        ordered.push_back(shot.get());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Shot* a, const Shot* b) { return a->date() < b->date(); });

    TidyPlan plan;
    std::unordered_set<std::string> claimed;
    for (const Shot* shot : ordered) {
        if (!shot->isRead()) {
            plan.skipped[shot->path] = stillBeingRead;
            continue;
        }
        if (!exists(shot->path)) {
            plan.skipped[shot->path] = noLongerThere;
            continue;
        }
        const std::string folder = tidyLayoutFolder(layout, *shot, root);
        if (!rename && folder == shot->folder()) {
            plan.skipped[shot->path] = alreadyInPlace;
            continue;
        }
        const std::string name = rename ? suggestedName(*shot) : std::string(shot->name());
        std::string target = unique(joinPath(folder, name), shot->path, claimed, exists);
        if (target == shot->path) {
            plan.skipped[shot->path] = alreadyInPlace;
            continue;
        }
        claimed.insert(target);
        plan.moves.push_back({shot->path, std::move(target)});
    }
    return plan;
}

} // namespace lumivale::Tidy
