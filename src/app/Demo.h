#pragma once

// Demonstration data: a believable library of drawn screenshots, for showing the window (and
// rendering its pictures) without touching anything of the user's.

#include "app/AppModel.h"
#include "core/Date.h"
#include "core/Status.h"

#include <string>

namespace lumivale::Demo {

// The folders of a demonstration rooted at `dir`: its data, screenshots and archive all inside.
Paths paths(const std::string& dir);

// Draws the demonstration screenshots into the screenshot folder of `dir`, dated over the weeks
// before `now`; pictures already there are kept.
Status draw(const std::string& dir, Date now);

// The services of a demonstration: the locked area's key in memory and a Trash inside `dir`.
AppModel::Services services(const std::string& dir);

} // namespace lumivale::Demo
