#include "ui/DesktopResults.h"

#include "app/ThumbnailCache.h"
#include "ui/ShotLabels.h"

namespace lumivale::DesktopResults {
namespace {

// The smallest valid thumbnail of the picture in the shared cache: a search shows small icons.
std::optional<std::string> cached(const std::string& picture, const ThumbnailCache::Stamp& stamp) {
    using ThumbnailCache::Size;
    for (Size size : {Size::normal, Size::large, Size::xLarge, Size::xxLarge})
        if (!ThumbnailCache::lookUp(picture, size, stamp).isNull())
            return ThumbnailCache::pathOf(picture, size);
    return std::nullopt;
}

std::string describeShown(const Shot& shot, const SearchQuery& query) {
    QString text = shelfLineOf(shot);
    if (const auto hits = query.hitLines(shot); !hits.empty())
        text += " \u2014 " + QString::fromStdString(shot.lines[hits.front()].text).simplified();
    return text.toStdString();
}

} // namespace

SearchQuery queryOf(const QStringList& terms) {
    return SearchQuery(terms.join(' ').toStdString());
}

std::vector<std::string> find(const AppModel& model, const SearchQuery& query) {
    if (query.isEmpty()) return {};
    std::vector<ShotPtr> ranked = query.rank(model.all());
    if (ranked.size() > limit) ranked.resize(limit);
    std::vector<std::string> ids;
    ids.reserve(ranked.size());
    for (const ShotPtr& shot : ranked)
        ids.push_back(shot->path);
    return ids;
}

std::vector<DesktopResult> describe(const AppModel& model, const std::vector<std::string>& ids,
                                    const SearchQuery& query) {
    std::vector<DesktopResult> results;
    for (const std::string& id : ids) {
        const Shot* shot = model.library().find(id);
        if (!shot) continue;
        if (model.isHidden(*shot))
            results.push_back(
                {id, std::string(shelfTitle(shot->category())), "Private", true, false});
        else
            results.push_back({id, titleOf(*shot).toStdString(), describeShown(*shot, query), false,
                               ThumbnailCache::mayShare(*shot)});
    }
    return results;
}

std::optional<std::string> thumbnailFile(const DesktopResult& result) {
    if (result.hidden) return std::nullopt;
    const auto stamp = ThumbnailCache::stampOf(result.id);
    if (!stamp) return std::nullopt;
    if (auto found = cached(result.id, *stamp)) return found;
    if (!result.share) return result.id;
    ThumbnailCache::obtain(result.id, true);
    return cached(result.id, *stamp);
}

} // namespace lumivale::DesktopResults
