#pragma once

#include "core/TidyRun.h"

#include <string>

namespace lumivale {

// A trasher that moves each file into `folder` under a free name, for the self-check and the
// demonstration, which must never fill the user's Trash.
Trasher folderTrash(std::string folder);

} // namespace lumivale
