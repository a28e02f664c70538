// lumivale tidy, clear, trash and undo: filing screenshots into the archive, putting old ones in
// the Trash, and taking either back through the journal book.

#include "app/TidyChoices.h"
#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "core/PathName.h"

#include <QJsonObject>

#include <algorithm>
#include <iostream>

namespace lumivale::cli {
namespace {

// Reads --scope and --include-private; false (after saying why) on a wrong value.
bool takeScope(std::vector<std::string>& args, TidyChoices& choices) {
    bool missing = false;
    const auto scopes = takeValues(args, "--scope", missing);
    choices.keepPrivate = !takeFlag(args, "--include-private");
    if (missing)
        return false;
    if (!scopes.empty()) {
        if (scopes.back() == "loose")
            choices.scope = TidyScope::loose;
        else if (scopes.back() == "everything")
            choices.scope = TidyScope::everything;
        else
            return false;
    }
    return true;
}

void printPlan(const TidyPlan& plan, const std::string& archive, bool json) {
    if (json) {
        for (const Move& move : plan.moves)
            printJsonLine({{"from", QString::fromStdString(move.from)}, {"to", QString::fromStdString(move.to)}});
        for (const auto& [path, reason] : plan.skipped)
            printJsonLine({{"path", QString::fromStdString(path)}, {"skipped", QString::fromStdString(reason)}});
        return;
    }
    if (plan.isEmpty()) {
        std::cout << "Everything here is already in place.\n";
    } else {
        std::cout << plan.moves.size() << " to move into " << archive << ":\n";
        for (const Move& move : plan.moves) {
            std::string to = move.to;
            if (to.compare(0, archive.size() + 1, archive + "/") == 0)
                to = to.substr(archive.size() + 1);
            std::cout << "  " << lastComponent(move.from) << " \u2192 " << to << "\n";
        }
    }
    for (const auto& [path, reason] : plan.skipped)
        std::cout << "  left alone: " << lastComponent(path) << " (" << reason << ")\n";
}

int tidy(std::vector<std::string> args) {
    TidyChoices choices;
    const bool json = takeFlag(args, "--json");
    const bool dryRun = takeFlag(args, "--dry-run");
    const bool yes = takeFlag(args, "--yes");
    choices.rename = takeFlag(args, "--rename");
    bool missing = false;
    const auto layouts = takeValues(args, "--layout", missing);
    const bool scopeOk = takeScope(args, choices);
    if (!layouts.empty() && layouts.back() == "month")
        choices.layout = TidyLayout::byCategoryAndMonth;
    else if (!layouts.empty() && layouts.back() != "shelf")
        missing = true;
    if (missing || !scopeOk || !args.empty())
        return usageError("usage: lumivale tidy [--layout shelf|month] [--rename] [--scope loose|everything] "
                          "[--include-private] [--dry-run] [--yes] [--json]");
    Session session(yes);
    AppModel& model = session.model();
    const TidyPlan plan = fileIntoFolders(model, choices);
    if (choices.scope == TidyScope::loose && !anyLoose(model) && !json) {
        std::cout << "No loose screenshots: they're all filed already.\n";
        return Exit::done;
    }
    printPlan(plan, model.paths().archive, json);
    if (dryRun || plan.isEmpty())
        return Exit::done;
    const size_t n = plan.moves.size();
    if (!yes && !confirmOnTerminal("Move " + std::to_string(n) + (n == 1 ? " screenshot" : " screenshots") + " into " +
                                       model.paths().archive + "?",
                                   "Nothing is deleted. Undo puts everything back.", "Move"))
        return Exit::failed;
    if (!model.tidy(plan))
        return say(model);
    return saveAndSay(model);
}

int clear(std::vector<std::string> args) {
    TidyChoices choices;
    const bool json = takeFlag(args, "--json");
    const bool dryRun = takeFlag(args, "--dry-run");
    const bool yes = takeFlag(args, "--yes");
    bool missing = false;
    const auto days = takeValues(args, "--days", missing);
    const bool scopeOk = takeScope(args, choices);
    const bool ageOk = !days.empty() && std::any_of(std::begin(clearAges), std::end(clearAges),
                                                    [&](int d) { return std::to_string(d) == days.back(); });
    if (missing || !scopeOk || !ageOk || !args.empty())
        return usageError("usage: lumivale clear --days 30|90|182|365 [--scope loose|everything] "
                          "[--include-private] [--dry-run] [--yes] [--json]");
    choices.days = std::stoi(days.back());
    Session session(yes);
    AppModel& model = session.model();
    const std::vector<ShotPtr> old = clearOut(model, choices);
    std::vector<std::string> paths;
    for (const ShotPtr& shot : old) {
        paths.push_back(shot->path);
        if (json)
            printJsonLine({{"path", QString::fromStdString(shot->path)},
                           {"shelf", QString::fromUtf8(shelfId(shot->category()).data())}});
    }
    if (!json) {
        if (old.empty())
            std::cout << "Nothing that old. Nice.\n";
        else
            std::cout << old.size() << " to put in the Trash. By shelf:\n";
        for (Shelf shelf : allShelves) {
            const auto count = std::count_if(old.begin(), old.end(), [&](const ShotPtr& s) { return s->category() == shelf; });
            if (count)
                std::cout << "  " << shelfTitle(shelf) << "  " << count << "\n";
        }
    }
    if (dryRun || paths.empty())
        return Exit::done;
    if (!model.trash(paths))
        return say(model);
    return saveAndSay(model);
}

int trash(std::vector<std::string> args) {
    const bool yes = takeFlag(args, "--yes");
    if (args.empty())
        return usageError("usage: lumivale trash PATH... [--yes]");
    std::vector<std::string> paths;
    for (const std::string& arg : args)
        paths.push_back(absolutePathOf(arg));
    Session session(yes);
    if (!allInLibrary(session.model(), paths))
        return Exit::failed;
    if (!session.model().trash(paths))
        return say(session.model());
    return saveAndSay(session.model());
}

int undo(std::vector<std::string> args) {
    const bool list = takeFlag(args, "--list");
    const bool json = takeFlag(args, "--json");
    if (!args.empty())
        return usageError("usage: lumivale undo [--list] [--json]");
    Session session;
    AppModel& model = session.model();
    if (list) {
        for (const Journal& journal : model.journals().entries) {
            if (json)
                printJsonLine({{"id", QString::fromStdString(journal.id)},
                               {"date", isoDate(journal.date)},
                               {"summary", QString::fromStdString(journal.summary())},
                               {"undone", journal.undone}});
            else
                std::cout << isoDate(journal.date).toStdString() << "  " << journal.summary()
                          << (journal.undone ? "  (undone)" : "") << "\n";
        }
        return Exit::done;
    }
    if (!model.canUndo()) {
        printError("there is nothing to undo");
        return Exit::failed;
    }
    model.undoLast();
    model.waitUntilIdle();
    return saveAndSay(model);
}

LUMIVALE_COMMAND("tidy", "tidy [--layout shelf|month] [--rename] [--scope loose|everything] [--include-private] [--dry-run] [--yes]",
                 "files screenshots into one folder per shelf in the archive", tidy, Access::changes);
LUMIVALE_COMMAND("clear", "clear --days 30|90|182|365 [--scope loose|everything] [--include-private] [--dry-run] [--yes]",
                 "puts read screenshots older than the given days in the Trash", clear, Access::changes);
LUMIVALE_COMMAND("trash", "trash PATH... [--yes]", "puts screenshots in the Trash (undo brings them back)", trash, Access::changes);
LUMIVALE_COMMAND("undo", "undo [--list]", "undoes the last tidy or trashing; --list shows the journal book", undo, Access::changes);

} // namespace
} // namespace lumivale::cli
