#include "cli/Session.h"

#include "cli/Command.h"

#include <QDir>
#include <QFileInfo>

#include <iostream>
#include <unistd.h>

namespace lumivale::cli {

namespace {

AppModel::Services servicesFor(bool yes) {
    AppModel::Services services;
    if (yes)
        services.confirm = [](const std::string&, const std::string&, const std::string&) { return true; };
    else
        services.confirm = confirmOnTerminal;
    return services;
}

} // namespace

Session::Session(bool yes)
    : settings_(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "Lumivale"),
      model_(std::make_unique<AppModel>(Paths::live(settings_), settings_, servicesFor(yes))) {
    model_->load();
}

bool confirmOnTerminal(const std::string& message, const std::string& detail, const std::string& button) {
    if (!stdinIsTerminal()) {
        std::cerr << "lumivale: " << message << " Not confirmed: run with --yes to go ahead without asking.\n";
        return false;
    }
    std::cerr << message << "\n" << detail << "\n" << button << "? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
}

int say(const AppModel& model) {
    if (!model.banner())
        return Exit::failed;
    (model.banner()->isError ? std::cerr : std::cout) << model.banner()->text << "\n";
    return model.banner()->isError ? Exit::failed : Exit::done;
}

int saveAndSay(AppModel& model) {
    const bool kept = saved(model);
    const int status = say(model);
    return kept ? status : Exit::failed;
}

bool saved(AppModel& model) {
    const Status written = model.saveNow();
    if (!written)
        printError("the change couldn't be saved in " + model.paths().data + ": " + written.message());
    return written.isOk();
}

bool allInLibrary(const AppModel& model, const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        if (!model.library().find(path)) {
            printError(path + " isn't a screenshot in the library (run lumivale scan first)");
            return false;
        }
    return true;
}

bool stderrIsTerminal() { return isatty(STDERR_FILENO) == 1; }
bool stdinIsTerminal() { return isatty(STDIN_FILENO) == 1; }


} // namespace lumivale::cli
