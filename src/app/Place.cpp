#include "app/Place.h"

#include "core/ScreenshotFolder.h"

namespace lumivale {

std::string Place::title(const std::string& home) const {
    switch (kind) {
    case Kind::shelf: return std::string(shelfTitle(shelf));
    case Kind::folder: return ScreenshotFolder::displayName(folder, home);
    case Kind::overview: return "Overview";
    case Kind::all: return "All screenshots";
    case Kind::recent: return "Last 7 days";
    case Kind::privateOnes: return "Private";
    case Kind::locked: return "Locked";
    }
    return {};
}

std::optional<Place> Place::parse(const std::string& name) {
    if (name == "overview") return of(Kind::overview);
    if (name == "all") return of(Kind::all);
    if (name == "recent") return of(Kind::recent);
    if (name == "private") return of(Kind::privateOnes);
    if (name == "locked") return of(Kind::locked);
    if (auto shelf = shelfFromId(name)) return ofShelf(*shelf);
    if (!name.empty() && name.front() == '/') {
        std::string path = name;
        while (path.size() > 1 && path.back() == '/')
            path.pop_back();
        return ofFolder(path);
    }
    return std::nullopt;
}

} // namespace lumivale
