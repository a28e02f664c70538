#pragma once

// Only one process changes a library at a time. While the window is open, its process owns the
// library, and a command that reads or changes it is handed to that process over the session
// bus, so nothing the window holds is overwritten and the window shows the change at once.
// Without a window, a command that changes the library holds the data folder's lock.

#include "cli/Session.h"
#include "platform/DataFolderLock.h"

#include <optional>
#include <string>
#include <vector>

namespace lumivale::cli {

// The data folder commands work on: --data, else $LUMIVALE_DATA_DIR, else the default.
std::string dataFolder();

// Runs `args` (the command's name first) in the window's process when a window is open on
// `dataDir`, printing what it printed; its exit status, or nothing when there is no such window.
std::optional<int> runInWindow(const std::vector<std::string>& args, const std::string& dataDir);

// Takes the data folder's lock for a command that changes the library: waits while another
// command holds it, and refuses, saying why, while a window holds it. Nothing after refusing.
std::optional<DataFolderLock> lockForChanges(const std::string& dataDir);

// What a command run for another process printed, and its exit status.
struct HostedRun {
    int status = 0;
    std::string out;
    std::string err;
};
// Runs `args` (the command's name first) for another `lumivale`, in `cwd`, against the host's
// model, asking that process's terminal through the host.
HostedRun runHosted(const std::vector<std::string>& args, const std::string& cwd, const Host& host);

} // namespace lumivale::cli
