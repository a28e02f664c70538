#include "app/Paths.h"

#include "app/Settings.h"
#include "platform/ScreenshotFolderLocation.h"
#include "platform/UserFolders.h"

#include <QDir>
#include <QStandardPaths>

#include <cstdlib>

namespace lumivale {

Paths Paths::at(std::string data, std::string screenshotFolder, std::string archive) {
    Paths p{std::move(data), std::move(screenshotFolder), std::move(archive), {}};
    p.vault = p.data + "/Locked";
    return p;
}

Paths Paths::live(const QSettings& settings) {
    const std::string home = QDir::homePath().toStdString();
    std::string data;
    if (const char* dir = std::getenv("LUMIVALE_DATA_DIR"); dir && *dir)
        data = QDir::cleanPath(QDir(QString::fromLocal8Bit(dir)).absolutePath()).toStdString();
    else
        data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation).toStdString() + "/Lumivale";
    std::string archive = Settings::string(settings, Settings::archiveFolder)
                              .value_or(UserFolders::dirs(home).pictures + "/Lumivale Archive");
    return at(std::move(data), ScreenshotFolder::current(home), std::move(archive));
}

} // namespace lumivale
