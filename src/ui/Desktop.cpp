#include "ui/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace lumivale::Desktop {

bool openFile(const std::string& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
}

bool showInFolder(const std::string& path) {
    const QString file = QString::fromStdString(path);
    auto call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                               "org.freedesktop.FileManager1", "ShowItems");
    call << QStringList{QUrl::fromLocalFile(file).toString()} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 3000);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(file).absolutePath()));
}

} // namespace lumivale::Desktop
