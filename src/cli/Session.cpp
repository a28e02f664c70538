#include "cli/Session.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

namespace lumivale::cli {

Session::Session()
    : settings_(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "Lumivale"),
      model_(std::make_unique<AppModel>(Paths::live(settings_), settings_)) {
    model_->load();
}

bool stderrIsTerminal() { return isatty(STDERR_FILENO) == 1; }
bool stdinIsTerminal() { return isatty(STDIN_FILENO) == 1; }

std::string absolutePath(const std::string& path) {
    return QDir::cleanPath(QFileInfo(QString::fromStdString(path)).absoluteFilePath()).toStdString();
}

} // namespace lumivale::cli
