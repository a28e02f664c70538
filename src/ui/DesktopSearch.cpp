#include "ui/DesktopSearch.h"

#include "ui/GnomeSearchProvider.h"
#include "ui/PlasmaRunner.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <memory>

namespace lumivale::DesktopSearch {

void Callbacks::showKept(const AppModel& model, const std::string& path) const {
    if (show && model.library().find(path)) show(path);
}

Status registerOn(QDBusConnection& connection, AppModel& model, Callbacks callbacks) {
    if (!connection.isConnected())
        return Status::failure("Not connected to the session bus: " +
                               connection.lastError().message().toStdString());
    qDBusRegisterMetaType<QList<QVariantMap>>();
    PlasmaRunner::registerTypes();
    auto gnome = std::make_unique<GnomeSearchProvider>(model, callbacks, &model);
    auto krunner = std::make_unique<PlasmaRunner>(model, std::move(callbacks), &model);
    const auto exportSlots = QDBusConnection::ExportAllSlots;
    if (!connection.registerObject(gnomeShellPath, gnome.get(), exportSlots))
        return Status::failure(std::string("The object path ") + gnomeShellPath +
                               " is taken on the bus.");
    if (!connection.registerObject(krunnerPath, krunner.get(), exportSlots)) {
        connection.unregisterObject(gnomeShellPath);
        return Status::failure(std::string("The object path ") + krunnerPath +
                               " is taken on the bus.");
    }
    gnome.release();
    krunner.release();
    return Status::ok();
}

void answerLater(const QDBusContext& call, QThreadPool& pool, std::function<QVariant()> answer) {
    call.setDelayedReply(true);
    pool.start([request = call.message(), bus = call.connection(), answer = std::move(answer)] {
        bus.send(request.createReply(answer()));
    });
}

} // namespace lumivale::DesktopSearch
