#pragma once

// What every command that works on the user's library needs: the settings, the model over the
// live paths, loaded.

#include "app/AppModel.h"

#include <QSettings>

#include <memory>

namespace lumivale::cli {

// A command run by this process for another `lumivale`: the model it works on (the window's), and
// that process's terminal, which questions reach through `ask`.
struct Host {
    AppModel* model = nullptr;
    bool stdinTerminal = false;
    bool stdoutTerminal = false;
    AppModel::Confirm ask;
};
// The host of the command running now, if it runs for another process; set while it runs.
const Host* currentHost();
void setCurrentHost(const Host* host);

class Session {
public:
    // `yes` answers every confirmation with yes; otherwise questions are asked on the terminal.
    explicit Session(bool yes = false);
    ~Session();
    AppModel& model() { return *model_; }

private:
    QSettings settings_;
    std::unique_ptr<AppModel> own_;
    AppModel* model_;
    AppModel::Confirm hostsConfirm_; // the host model's own, given back at the end
};

// Asks on the terminal; refuses (saying how to go ahead) when standard input is not one.
bool confirmOnTerminal(const std::string& message, const std::string& detail, const std::string& button);

// Prints the model's banner (an error banner on standard error) and gives the exit status it
// stands for; a failure when there is no banner.
int say(const AppModel& model);
// Saves, then says as `say` does; a failure too when the save failed (saying why).
int saveAndSay(AppModel& model);
// Saves now; false after saying why when the change could not be kept.
bool saved(AppModel& model);
// Whether every path is a screenshot in the library; false after naming the first that is not.
bool allInLibrary(const AppModel& model, const std::vector<std::string>& paths);

// Whether standard error is a terminal (progress bars are drawn only there).
bool stderrIsTerminal();
// Whether standard input is a terminal (questions are asked only there).
bool stdinIsTerminal();
// Whether standard output is a terminal (a search that finds nothing says so only there).
bool stdoutIsTerminal();

} // namespace lumivale::cli
