// lumivale shelf PATH SHELF: puts a shot on a shelf by hand ("auto" gives it back to the sorter).

#include "cli/Command.h"
#include "cli/Session.h"

#include <iostream>

namespace lumivale::cli {
namespace {

int shelf(std::vector<std::string> args) {
    if (args.size() != 2)
        return usageError("usage: lumivale shelf PATH SHELF (ids, bills, tickets, chats, code, shopping, maps, other or auto)");
    std::optional<Shelf> chosen;
    if (args[1] != "auto") {
        chosen = shelfFromId(args[1]);
        if (!chosen)
            return usageError("unknown shelf '" + args[1] + "'");
    }
    const std::string path = absolutePathOf(args[0]);
    Session session;
    AppModel& model = session.model();
    const Shot* shot = model.library().find(path);
    if (!shot) {
        printError(path + " isn't in the library (run lumivale scan first)");
        return Exit::failed;
    }
    model.setShelf(path, chosen);
    if (!saved(model))
        return Exit::failed;
    const Shot* now = model.library().find(path);
    std::cout << now->name() << ": " << shelfTitle(now->category()) << (now->manual ? " (by hand)" : " (automatic)") << "\n";
    return Exit::done;
}

LUMIVALE_COMMAND("shelf", "shelf PATH SHELF", "puts a screenshot on a shelf by hand (auto: back to the sorter's choice)", shelf, Access::changes);

} // namespace
} // namespace lumivale::cli
