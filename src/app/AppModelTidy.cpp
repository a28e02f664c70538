// Tidy actions: filing screenshots, putting them in the Trash, and undoing either. Each keeps the
// library in step with the disk, records a journal, saves and says what happened in a banner.

#include "app/AppModel.h"

#include <QLocale>

namespace lumivale {
namespace {

std::string grouped(int64_t n) { return QLocale::system().toString(static_cast<qlonglong>(n)).toStdString(); }

std::string noun(int64_t n) { return n == 1 ? "screenshot" : "screenshots"; }

} // namespace

std::optional<TidyResult> AppModel::tidy(const TidyPlan& plan) {
    if (plan.isEmpty() || !journalWritable())
        return std::nullopt;
    TidyResult result = Tidy::perform(plan, now());
    for (const Move& move : result.journal.entries)
        library_.move(move.from, move.to);
    journals_.add(result.journal);
    const bool archiveRead = std::any_of(sources_.begin(), sources_.end(),
                                         [&](const Source& s) { return s.path == paths_.archive; });
    if (!paths_.archive.empty() && !archiveRead)
        rebuildSources();
    emit libraryChanged();
    emit journalsChanged();
    save();
    report(result, "Moved");
    rewatch();
    return result;
}

std::optional<TidyResult> AppModel::trash(const std::vector<std::string>& paths) {
    if (paths.empty())
        return std::nullopt;
    const int64_t n = static_cast<int64_t>(paths.size());
    if (!services_.confirm("Put " + grouped(n) + " " + noun(n) + " in the Trash?",
                           "You can put them back with Undo, or from the Trash in your file manager, until you empty it.",
                           "Move to Trash") ||
        !journalWritable())
        return std::nullopt;
    TidyResult result = Tidy::trash(paths, now(), services_.trasher);
    for (const Move& move : result.journal.entries)
        library_.remove(move.from);
    journals_.add(result.journal);
    if (selection_ && !library_.find(*selection_))
        setSelection(std::nullopt);
    emit libraryChanged();
    emit journalsChanged();
    save();
    report(result, "Put in the Trash:");
    return result;
}

void AppModel::report(const TidyResult& result, const std::string& verb) {
    const int64_t n = static_cast<int64_t>(result.journal.entries.size());
    const int64_t f = static_cast<int64_t>(result.failed.size());
    std::optional<Journal> undo;
    if (n > 0)
        undo = result.journal;
    if (f == 0) {
        showBanner(Banner{QUuid::createUuid(), verb + " " + grouped(n) + " " + noun(n), std::move(undo), false});
        return;
    }
    // The moved count stands plain and the failed count grouped, as the banner has always read.
    const std::string first = result.failed.empty() ? std::string() : result.failed.begin()->second;
    showBanner(Banner{QUuid::createUuid(),
                      verb + " " + std::to_string(n) + "; " + grouped(f) + " " + noun(f) +
                          " couldn't be moved: " + first,
                      std::move(undo), true});
}

void AppModel::undo(const Journal& journal) {
    const UndoResult result = Tidy::undo(journal);
    for (const Move& move : result.restored)
        library_.move(move.from, move.to);
    // What could not come back but still lies where it was put stays undoable.
    if (result.left.empty())
        journals_.markUndone(journal.id);
    else
        journals_.narrow(journal.id, result.left);
    if (banner_) {
        banner_.reset();
        emit bannerChanged();
    }
    emit libraryChanged();
    emit journalsChanged();
    save();
    rescan();
    const int64_t r = static_cast<int64_t>(result.restored.size());
    const int64_t f = static_cast<int64_t>(result.failed.size());
    if (f == 0)
        flash("Put " + grouped(r) + " " + noun(r) + " back");
    else
        flash("Put " + std::to_string(r) + " back; " + std::to_string(f) + " couldn't come back", true);
}

void AppModel::undoLast() {
    if (const auto journal = journals_.lastUndoable())
        undo(*journal);
}

bool AppModel::canUndo() const { return journals_.lastUndoable().has_value(); }

} // namespace lumivale
