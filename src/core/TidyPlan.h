#pragma once

// Planning a tidy: which screenshot goes to which folder under the archive, and why the others
// stay. Pure computation over shots and an existence test; nothing here touches a file.

#include "core/Date.h"
#include "core/Shot.h"

#include <array>
#include <compare>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace lumivale {

// The shape of the folder tree a tidy files into.
enum class TidyLayout { byCategory, byCategoryAndMonth };

inline constexpr std::array<TidyLayout, 2> allTidyLayouts = {TidyLayout::byCategory,
                                                             TidyLayout::byCategoryAndMonth};

// The raw value, as stored and typed ("byCategory", "byCategoryAndMonth").
std::string_view tidyLayoutId(TidyLayout layout);
// The layout with exactly this raw value, or nothing.
std::optional<TidyLayout> tidyLayoutFromId(std::string_view id);
// The label shown to the user ("One folder per shelf", "Shelf, then month").
std::string_view tidyLayoutTitle(TidyLayout layout);
// The folder the shot is filed into: root/shelf folder, and /month for the month layout.
std::string tidyLayoutFolder(TidyLayout layout, const Shot& shot, const std::string& root);

// One relocation of a file, planned or done. In a trash journal `to` may be empty: the place
// in the Trash is unknown.
struct Move {
    std::string from;
    std::string to;

    bool operator==(const Move&) const = default;
    auto operator<=>(const Move&) const = default;
};

// The moves a tidy would make, in order, and why every other screenshot stays.
struct TidyPlan {
    std::vector<Move> moves;
    std::map<std::string, std::string> skipped; // source path → reason

    // True when nothing would move; skips do not count.
    bool isEmpty() const { return moves.empty(); }
    bool operator==(const TidyPlan&) const = default;
};

// Whether something is at a path.
using ExistsTest = std::function<bool(const std::string& path)>;

} // namespace lumivale

namespace lumivale::Tidy {

// The planner's reasons for leaving a screenshot alone.
inline constexpr std::string_view stillBeingRead = "Still being read";
inline constexpr std::string_view noLongerThere = "No longer there";
inline constexpr std::string_view alreadyInPlace = "Already in place";

// Files the read shots under root, oldest first; every input path ends up either as the `from`
// of one move or in `skipped`. With `rename`, each file gets its suggested name. No two moves
// share a target, and no target is a path that `exists` reports taken.
TidyPlan plan(std::span<const ShotPtr> shots, const std::string& root, TidyLayout layout,
              bool rename, const ExistsTest& exists);

// A descriptive file name: shelf word – title – day, cleaned, with the extension in lower case
// ("Chat – 2026-10-14.png").
std::string suggestedName(const Shot& shot);

// A free path near `candidate`: the candidate itself, else "base 2.ext" … "base 10000.ext",
// else an upper-case UUID name with the extension. `from` (the file's own place) always counts
// as free; a claimed path or one `exists` reports never does.
std::string unique(const std::string& candidate, const std::string& from,
                   const std::unordered_set<std::string>& claimed, const ExistsTest& exists);

// The text made safe to be one file name: no control or format characters, "/" and ":" as
// "-", no leading dots, trimmed, at most 120 characters; "Screenshot" when nothing is left.
std::string clean(std::string_view text);

// The month folder name of a date in the system's time zone ("2026-11").
std::string month(Date date);
// The day of a date in the system's time zone ("2026-11-03").
std::string day(Date date);

} // namespace lumivale::Tidy
