#pragma once

#include "app/AppModel.h"
#include "core/SearchQuery.h"

#include <QStringList>
#include <optional>
#include <string>
#include <vector>

namespace lumivale {

// One screenshot as the desktop's search (GNOME Shell, KRunner) shows it.
struct DesktopResult {
    std::string id;   // the shot's path
    std::string name; // its title; a hidden private shot's shelf
    std::string
        description;     // its shelf and the first line that holds a term; "Private" when hidden
    bool hidden = false; // private while blurring is on: no words, no thumbnail
    bool share = false;  // its thumbnail may be written to the shared cache
};

namespace DesktopResults {

// A desktop shows only the first few results of a provider, so no more are sent.
inline constexpr size_t limit = 20;

// The query a desktop shell's terms make: the words as typed, so quotes still join phrases.
SearchQuery queryOf(const QStringList& terms);
// The paths of the library's shots that match the query, best first, at most `limit`; none for a
// query without terms.
std::vector<std::string> find(const AppModel& model, const SearchQuery& query);
// The results for these paths, in the order given, described for the query; paths that are not
// in the library (any more) are left out.
std::vector<DesktopResult> describe(const AppModel& model, const std::vector<std::string>& ids,
                                    const SearchQuery& query);
// The file whose picture stands for a result: nothing when it is hidden; a valid thumbnail from
// the shared cache, made and written there when missing if the result may be shared; otherwise
// the picture itself, so nothing private enters the cache. Nothing when the picture is gone or
// no thumbnail can be made of it. Slow: call it off the main thread.
std::optional<std::string> thumbnailFile(const DesktopResult& result);

} // namespace DesktopResults
} // namespace lumivale
