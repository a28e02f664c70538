#pragma once

#include <string>

class QSettings;

namespace lumivale {

// Where Lumivale keeps and finds things. All absolute folder paths.
struct Paths {
    std::string data;             // library, journal and the locked area
    std::string screenshotFolder; // where the system saves screenshots
    std::string archive;          // where tidies file screenshots
    std::string vault;            // data + "/Locked"

    std::string libraryFile() const { return data + "/library.plist"; }
    std::string journalFile() const { return data + "/journal.plist"; }

    // The folders of this user: LUMIVALE_DATA_DIR or ~/.local/share/Lumivale; the screenshot
    // tool's folder; the "archiveFolder" setting or Pictures + "Lumivale Archive".
    static Paths live(const QSettings& settings);
    // The same layout under one data folder with the given screenshot folder and archive.
    static Paths at(std::string data, std::string screenshotFolder, std::string archive);
};

} // namespace lumivale
