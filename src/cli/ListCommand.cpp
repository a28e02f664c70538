// lumivale list and lumivale search: the shots of a place, and the ranked matches of a query.

#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "core/SearchQuery.h"

#include <iostream>

namespace lumivale::cli {
namespace {

void print(const std::vector<ShotPtr>& shots, bool json) {
    for (const ShotPtr& shot : shots) {
        if (json)
            printJsonLine(shotJson(*shot));
        else
            std::cout << shotLine(*shot) << "\n";
    }
}

int list(std::vector<std::string> args) {
    const bool json = takeFlag(args, "--json");
    bool missing = false;
    const auto places = takeValues(args, "--place", missing);
    if (missing || !args.empty())
        return usageError("usage: lumivale list [--json] [--place PLACE]");
    std::string name = places.empty() ? "all" : places.back();
    if (!name.empty() && name.front() != '/' && name.find('/') != std::string::npos)
        name = absolutePathOf(name);
    const auto place = Place::parse(name);
    if (!place)
        return usageError("unknown place '" + name +
                          "': use overview, all, recent, private, locked, a shelf (ids, bills, tickets, "
                          "chats, code, shopping, maps, other) or a folder path");
    Session session;
    session.model().setPlace(*place);
    print(session.model().visible(), json);
    return Exit::done;
}

int search(std::vector<std::string> args) {
    const bool json = takeFlag(args, "--json");
    if (args.empty())
        return usageError("usage: lumivale search [--json] QUERY");
    std::string query;
    for (const std::string& word : args)
        query += (query.empty() ? "" : " ") + word;
    Session session;
    session.model().setPlace(Place::of(Place::Kind::all));
    session.model().setQuery(query);
    const std::vector<ShotPtr> found = session.model().visible();
    print(found, json);
    // A script reads no lines as no match; a person is told.
    if (found.empty() && !json && stdoutIsTerminal())
        std::cout << "No screenshot matches \u201c" << printable(query) << "\u201d.\n";
    return Exit::done;
}

LUMIVALE_COMMAND("list", "list [--json] [--place PLACE]",
                 "lists the screenshots of a place: overview, all, recent, private, locked, a shelf or a folder",
                 list, Access::reads);
LUMIVALE_COMMAND("search", "search [--json] QUERY", "finds screenshots by the words in them, best first", search, Access::reads);

} // namespace
} // namespace lumivale::cli
