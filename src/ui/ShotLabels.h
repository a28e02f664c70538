#pragma once

#include "core/Shot.h"

#include <QString>

namespace lumivale {

// The name a shot goes by in every view: its title, else its file name.
QString titleOf(const Shot& shot);
// What the views say of a shot's shelf: the shelf's title, or that it waits for or failed reading.
QString shelfLineOf(const Shot& shot);

} // namespace lumivale
