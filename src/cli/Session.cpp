#include "cli/Session.h"

#include "cli/Command.h"

#include <QDir>
#include <QFileInfo>

#include <iostream>
#include <unistd.h>

namespace lumivale::cli {

namespace {

const Host* host = nullptr;

AppModel::Confirm confirmFor(bool yes) {
    if (yes) return [](const std::string&, const std::string&, const std::string&) { return true; };
    return confirmOnTerminal;
}

} // namespace

const Host* currentHost() { return host; }
void setCurrentHost(const Host* h) { host = h; }

Session::Session(bool yes) : settings_(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "Lumivale") {
    if (host) {
        model_ = host->model;
        hostsConfirm_ = model_->replaceConfirm(confirmFor(yes));
        return;
    }
    own_ = std::make_unique<AppModel>(Paths::live(settings_), settings_, AppModel::Services{.confirm = confirmFor(yes)});
    model_ = own_.get();
    model_->load();
}

Session::~Session() {
    if (!own_) model_->replaceConfirm(std::move(hostsConfirm_));
}

bool confirmOnTerminal(const std::string& message, const std::string& detail, const std::string& button) {
    if (!stdinIsTerminal()) {
        std::cerr << "lumivale: " << message << " Not confirmed: run with --yes to go ahead without asking.\n";
        return false;
    }
    if (host) return host->ask(message, detail, button);
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

// Progress bars are drawn only for this process's own terminal.
bool stderrIsTerminal() { return !host && isatty(STDERR_FILENO) == 1; }
bool stdinIsTerminal() { return host ? host->stdinTerminal : isatty(STDIN_FILENO) == 1; }
bool stdoutIsTerminal() { return host ? host->stdoutTerminal : isatty(STDOUT_FILENO) == 1; }


} // namespace lumivale::cli
