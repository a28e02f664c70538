#pragma once

#include "app/AppModel.h"
#include "ui/ApplicationBus.h"

#include <QStringList>

#include <functional>

// The window's start: the normal one, with demonstration data, and the snapshot mode.
namespace lumivale::WindowApp {

struct Start {
    QStringList open;     // pictures to show selected ("Open With")
    bool service = false; // started by the session bus: no window until something asks for one
    // Runs a command that another `lumivale` handed over, on the window's model.
    std::function<ApplicationBus::CommandResult(AppModel& model, const ApplicationBus::Command& command)> runCommand;
};

// Opens the main window and runs until it closes; with LUMIVALE_DEMO_DIR the window shows
// demonstration data drawn into that folder, and with LUMIVALE_SNAPSHOT_DIR it renders its screens
// into that folder as pictures and quits. When a window is open already, it is brought to the
// front (showing `start.open`) instead. The exit status.
int run(int argc, char** argv, const Start& start = {});

// The services with the window's own questions: confirmations in dialogs, and the owner checked
// through polkit (the desktop's authentication dialog), else in our password dialog with PAM.
AppModel::Services windowServices(AppModel::Services services);

} // namespace lumivale::WindowApp
