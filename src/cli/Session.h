#pragma once

// What every command that works on the user's library needs: the settings, the model over the
// live paths, loaded.

#include "app/AppModel.h"

#include <QSettings>

#include <memory>

namespace lumivale::cli {

class Session {
public:
    // `yes` answers every confirmation with yes; otherwise questions are asked on the terminal.
    explicit Session(bool yes = false);
    AppModel& model() { return *model_; }
    QSettings& settings() { return settings_; }

private:
    QSettings settings_;
    std::unique_ptr<AppModel> model_;
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

} // namespace lumivale::cli
