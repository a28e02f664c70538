// lumivale lock, locked, restore and discard: the locked area from the command line. Every one
// of them asks for the owner's authentication first.

#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/Session.h"

#include <QJsonObject>

#include <iostream>

namespace lumivale::cli {
namespace {

// Opens the locked area; false (after saying why, when there is something to say) if it stays shut.
bool open(AppModel& model) {
    model.unlockVault();
    if (model.vaultOpen())
        return true;
    if (model.banner())
        std::cerr << model.banner()->text << "\n";
    else
        printError("the locked area stays closed (authentication was cancelled or failed)");
    return false;
}

// Opens the locked area and gives a copy of the item with this id; nothing (after saying why)
// when the area stays shut or holds no such item.
std::optional<LockedShot> openAndFind(AppModel& model, const std::string& id) {
    if (!open(model))
        return std::nullopt;
    for (const LockedShot& item : model.lockedItems())
        if (item.id == id)
            return item;
    printError("nothing locked has the id " + id);
    return std::nullopt;
}

int lock(std::vector<std::string> args) {
    const bool yes = takeFlag(args, "--yes");
    if (args.empty())
        return usageError("usage: lumivale lock PATH... [--yes]");
    std::vector<std::string> paths;
    for (const std::string& arg : args)
        paths.push_back(absolutePathOf(arg));
    Session session(yes);
    AppModel& model = session.model();
    if (!allInLibrary(model, paths))
        return Exit::failed;
    const int64_t before = model.vaultCount();
    model.lock(paths);
    if (!model.banner()) {
        printError("nothing was locked");
        return Exit::failed;
    }
    const int status = saveAndSay(model);
    return model.vaultCount() > before ? status : Exit::failed;
}

int locked(std::vector<std::string> args) {
    const bool json = takeFlag(args, "--json");
    if (!args.empty())
        return usageError("usage: lumivale locked [--json]");
    Session session;
    AppModel& model = session.model();
    if (!open(model))
        return Exit::failed;
    for (const LockedShot& item : model.lockedItems()) {
        if (json)
            printJsonLine({{"id", QString::fromStdString(item.id)},
                           {"name", QString::fromStdString(std::string(item.shot.name()))},
                           {"from", QString::fromStdString(std::string(item.shot.folder()))},
                           {"shelf", QString::fromUtf8(shelfId(item.shot.category()).data())},
                           {"lockedAt", isoDate(item.lockedAt)}});
        else
            std::cout << item.id << "  " << isoDate(item.lockedAt).toStdString() << "  " << item.shot.path << "\n";
    }
    if (model.banner()) // files that cannot be opened with this key
        std::cerr << model.banner()->text << "\n";
    return Exit::done;
}

int restore(std::vector<std::string> args) {
    bool missing = false;
    const auto to = takeValues(args, "--to", missing);
    if (missing || args.size() != 1)
        return usageError("usage: lumivale restore ID [--to DIR]");
    Session session;
    AppModel& model = session.model();
    const std::optional<LockedShot> item = openAndFind(model, args[0]);
    if (!item)
        return Exit::failed;
    const std::string folder = to.empty() ? std::string(item->shot.folder()) : absolutePathOf(to.back());
    model.restore(*item, folder);
    return saveAndSay(model);
}

int discard(std::vector<std::string> args) {
    const bool yes = takeFlag(args, "--yes");
    if (args.size() != 1)
        return usageError("usage: lumivale discard ID [--yes]");
    Session session(yes);
    AppModel& model = session.model();
    const std::optional<LockedShot> item = openAndFind(model, args[0]);
    if (!item)
        return Exit::failed;
    if (!model.discard(*item))
        return model.banner() ? saveAndSay(model) : Exit::failed;
    std::cout << "Moved the locked file of \u201c" << item->shot.name() << "\u201d to the Trash.\n";
    return Exit::done;
}

LUMIVALE_COMMAND("lock", "lock PATH... [--yes]", "locks screenshots away, encrypted; the originals go to the Trash", lock, Access::changes);
LUMIVALE_COMMAND("locked", "locked [--json]", "lists the locked screenshots", locked, Access::reads);
LUMIVALE_COMMAND("restore", "restore ID [--to DIR]", "writes a locked screenshot back as an ordinary file", restore, Access::changes);
LUMIVALE_COMMAND("discard", "discard ID [--yes]", "moves a locked screenshot's encrypted file to the Trash", discard, Access::changes);

} // namespace
} // namespace lumivale::cli
