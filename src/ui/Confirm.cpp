#include "ui/Confirm.h"

#include <QMessageBox>
#include <QPushButton>

namespace lumivale {

bool confirmInDialog(QWidget* parent, const std::string& message, const std::string& detail, const std::string& button) {
    QMessageBox box(parent);
    box.setObjectName("confirmDialog");
    box.setIcon(QMessageBox::Warning);
    box.setWindowTitle("Lumivale");
    box.setText(QString::fromStdString(message));
    box.setInformativeText(QString::fromStdString(detail));
    QPushButton* go = box.addButton(QString::fromStdString(button), QMessageBox::AcceptRole);
    go->setObjectName("confirmButton");
    QPushButton* cancel = box.addButton(QMessageBox::Cancel);
    cancel->setObjectName("cancelButton");
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == go;
}

} // namespace lumivale
