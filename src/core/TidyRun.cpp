#include "core/TidyRun.h"

#include "core/FileMove.h"
#include "core/FileOps.h"
#include "core/PathName.h"
#include "core/Uuid.h"

#include <unistd.h>

namespace lumivale {

Journal::Journal(Date d, Kind k, std::vector<Move> e)
    : id(newUuid()), date(d), kind(k), entries(std::move(e)) {}

std::string Journal::summary() const {
    const size_t n = entries.size();
    const std::string noun = n == 1 ? "1 screenshot" : std::to_string(n) + " screenshots";
    return kind == Kind::trashed ? "Put " + noun + " in the Trash" : "Moved " + noun;
}

std::string_view journalKindId(Journal::Kind kind) {
    return kind == Journal::Kind::trashed ? "trashed" : "moved";
}

std::optional<Journal::Kind> journalKindFromId(std::string_view id) {
    if (id == "moved") return Journal::Kind::moved;
    if (id == "trashed") return Journal::Kind::trashed;
    return std::nullopt;
}

namespace {

// Moves `from` to the first free path near `wanted` as the disk is now, making its folder;
// `target` says where it went.
Status place(const std::string& from, const std::string& wanted, std::string& target) {
    target = Tidy::unique(wanted, std::string(), {}, isTaken);
    if (Status made = makeFolders(std::string(parentPath(target))); !made) return made;
    return moveNoReplace(from, target);
}

// A freedesktop Trash keeps "files/NAME" and "info/NAME.trashinfo" side by side; a file taken
// back out leaves its info behind, which file managers would list as a ghost.
void forgetTrashInfo(std::string_view place) {
    const std::string_view files = parentPath(place);
    if (lastComponent(files) != "files") return;
    const std::string info = joinPath(joinPath(parentPath(files), "info"),
                                      std::string(lastComponent(place)) + ".trashinfo");
    unlink(info.c_str());
}

} // namespace

namespace Tidy {

TidyResult perform(const TidyPlan& plan, Date now) {
    std::vector<Move> entries;
    std::map<std::string, std::string> failed;
    for (const Move& move : plan.moves) {
        if (!isTaken(move.from)) {
            failed[move.from] = noLongerThere;
            continue;
        }
        std::string target;
        if (Status moved = place(move.from, move.to, target))
            entries.push_back({move.from, std::move(target)});
        else
            failed[move.from] = moved.message();
    }
    return {Journal(now, Journal::Kind::moved, std::move(entries)), std::move(failed)};
}

TidyResult trash(const std::vector<std::string>& paths, Date now, const Trasher& trasher) {
    std::vector<Move> entries;
    std::map<std::string, std::string> failed;
    for (const std::string& path : paths) {
        TrashOutcome outcome = trasher(path);
        if (outcome.status)
            entries.push_back({path, outcome.place.value_or(std::string())});
        else
            failed[path] = outcome.status.message();
    }
    return {Journal(now, Journal::Kind::trashed, std::move(entries)), std::move(failed)};
}

UndoResult undo(const Journal& journal) {
    UndoResult result;
    for (auto entry = journal.entries.rbegin(); entry != journal.entries.rend(); ++entry) {
        if (entry->to.empty() || !isTaken(entry->to)) {
            result.failed[entry->from] = notWhereItWasPut;
            continue;
        }
        std::string back;
        if (Status moved = place(entry->to, entry->from, back)) {
            if (journal.kind == Journal::Kind::trashed) forgetTrashInfo(entry->to);
            result.restored.push_back({entry->to, std::move(back)});
        } else {
            result.failed[entry->from] = moved.message();
            result.left.insert(result.left.begin(), *entry);
        }
    }
    return result;
}

} // namespace Tidy
} // namespace lumivale
