#pragma once

#include <string>

namespace lumivale::Snapshots {

// Renders the window's screens with demonstration data into `out` as PNG files (only the one
// called `only` when it is not empty); the demonstration is drawn into `demoDir`, or into a
// temporary folder when that is empty. The exit status: 0 when every picture was written.
int render(const std::string& out, const std::string& only, const std::string& demoDir);

} // namespace lumivale::Snapshots
