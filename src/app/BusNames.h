#pragma once

// The names under which Lumivale's process answers on the session bus.

namespace lumivale::Bus {

inline constexpr char service[] = "app.orvane.lumivale";
inline constexpr char path[] = "/app/orvane/lumivale";
// Runs a command of another `lumivale` in the window's process.
inline constexpr char commandLine[] = "app.orvane.lumivale.CommandLine";
// Given when the window has another data folder open than the command asks for.
inline constexpr char otherLibrary[] = "app.orvane.lumivale.Error.OtherLibrary";
// Where the process that handed a command over answers the questions asked on its terminal.
inline constexpr char terminal[] = "app.orvane.lumivale.Terminal";
inline constexpr char terminalPath[] = "/app/orvane/lumivale/Terminal";

} // namespace lumivale::Bus
