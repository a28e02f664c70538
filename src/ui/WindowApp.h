#pragma once

#include "app/AppModel.h"

// The window's start: the normal one, with demonstration data, and the snapshot mode.
namespace lumivale::WindowApp {

// Opens the main window and runs until it closes; with LUMIVALE_DEMO_DIR the window shows
// demonstration data drawn into that folder, and with LUMIVALE_SNAPSHOT_DIR it renders its screens
// into that folder as pictures and quits. The exit status.
int run(int argc, char** argv);

// The services with the window's own questions: confirmations in dialogs, and the owner checked
// through polkit (the desktop's authentication dialog), else in our password dialog with PAM.
AppModel::Services windowServices(AppModel::Services services);

} // namespace lumivale::WindowApp
