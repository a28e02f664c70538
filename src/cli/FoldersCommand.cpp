// lumivale folders [add|remove|on|off|archive PATH]: the folders that are read, and the archive.

#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "core/ScreenshotFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

#include <iostream>

namespace lumivale::cli {
namespace {

const char* kindName(Source::Kind kind) {
    switch (kind) {
    case Source::Kind::screenshots: return "screenshots";
    case Source::Kind::added: return "added";
    case Source::Kind::archive: return "archive";
    }
    return "";
}

void printSources(const AppModel& model, bool json) {
    const std::string home = QDir::homePath().toStdString();
    for (const Source& s : model.sources()) {
        if (json) {
            printJsonLine(QJsonObject{{"path", QString::fromStdString(s.path)},
                                      {"kind", kindName(s.kind)},
                                      {"enabled", s.enabled},
                                      {"readable", s.readable}});
        } else {
            std::cout << ScreenshotFolder::displayName(s.path, home) << "  (" << kindName(s.kind)
                      << (s.enabled ? "" : ", off") << (s.readable ? "" : ", can't be opened") << ")  "
                      << s.path << "\n";
        }
    }
}

int folders(std::vector<std::string> args) {
    const bool json = takeFlag(args, "--json");
    Session session;
    AppModel& model = session.model();
    if (args.empty()) {
        printSources(model, json);
        return Exit::done;
    }
    if (args.size() != 2)
        return usageError("usage: lumivale folders [--json] [add|remove|on|off|archive PATH]");
    const std::string& verb = args[0];
    const std::string path = absolutePathOf(args[1]);
    const auto source = std::find_if(model.sources().begin(), model.sources().end(),
                                     [&](const Source& s) { return s.path == path; });
    if (verb == "add") {
        if (!QFileInfo(QString::fromStdString(path)).isDir()) {
            printError("there is no folder at " + path);
            return Exit::failed;
        }
        model.addFolder(path);
    } else if (verb == "archive") {
        model.setArchive(path);
    } else if (verb == "remove" || verb == "on" || verb == "off") {
        if (source == model.sources().end()) {
            printError(path + " isn't one of the folders Lumivale reads");
            return Exit::failed;
        }
        if (verb == "remove" && source->kind != Source::Kind::added) {
            printError("only added folders can be removed; use 'off' to stop reading " + path);
            return Exit::failed;
        }
        const Source chosen = *source;
        if (verb == "remove")
            model.removeFolder(chosen);
        else
            model.setEnabled(chosen, verb == "on");
    } else {
        return usageError("unknown folders action '" + verb + "' (add, remove, on, off, archive)");
    }
    model.waitUntilIdle();
    if (!saved(model))
        return Exit::failed;
    printSources(model, json);
    return Exit::done;
}

LUMIVALE_COMMAND("folders", "folders [--json] [add|remove|on|off|archive PATH]",
                 "lists or changes the folders that are read; archive sets where tidies file", folders, Access::changes);

} // namespace
} // namespace lumivale::cli
