#include "ui/FolderChooser.h"

#include <QDir>
#include <QFileDialog>

namespace lumivale {

std::optional<std::string> chooseFolder(QWidget* parent, const QString& message,
                                        const QString& accept, const std::string& start) {
    QString from = QString::fromStdString(start);
    // A folder that does not exist yet (a new archive) opens at its nearest existing parent.
    while (!from.isEmpty() && !QDir(from).exists() && from != "/")
        from = QFileInfo(from).path();
    QFileDialog dialog(parent, message, from.isEmpty() ? QDir::homePath() : from);
    dialog.setObjectName("folderChooser");
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, accept);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return QDir::cleanPath(dialog.selectedFiles().front()).toStdString();
}

} // namespace lumivale
