#pragma once

#include <string>

// What the desktop does for us: opening a picture in the user's viewer and showing a file in the
// file manager.
namespace lumivale::Desktop {

// Opens the picture in the application the desktop chose for it.
bool openFile(const std::string& path);
// Shows the file selected in the file manager (org.freedesktop.FileManager1), else opens its folder.
bool showInFolder(const std::string& path);

} // namespace lumivale::Desktop
