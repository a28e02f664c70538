#include "ui/WindowApp.h"

#include "app/AppModel.h"
#include "app/Demo.h"
#include "app/ThumbnailProvider.h"
#include "platform/Authenticator.h"
#include "ui/Brand.h"
#include "ui/Confirm.h"
#include "ui/Icons.h"
#include "ui/MainWindow.h"
#include "ui/PasswordDialog.h"
#include "ui/Snapshots.h"

#include <QApplication>
#include <QDir>
#include <QSettings>

#include <cstdlib>
#include <iostream>

namespace lumivale::WindowApp {
namespace {

std::string env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// Offscreen, Qt notes what the platform cannot do (window hints, a missing runtime folder); only
// real errors are worth printing.
void onlyErrors(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::cerr << "lumivale: " << message.toStdString() << "\n";
}

int runWindow(const std::string& demoDir) {
    QSettings userSettings(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "Lumivale");
    // A demonstration keeps its settings apart from the user's and saves nothing of its own.
    QSettings demoSettings(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "app.orvane.lumivale.demo");
    std::unique_ptr<AppModel> model;
    if (demoDir.empty()) {
        model = std::make_unique<AppModel>(Paths::live(userSettings), userSettings, windowServices({}));
    } else {
        if (Status drawn = Demo::draw(demoDir, now()); !drawn) {
            std::cerr << "lumivale: the demonstration screenshots couldn't be drawn into " << demoDir << ": "
                      << drawn.message() << "\n";
            return 1;
        }
        model = std::make_unique<AppModel>(Demo::paths(demoDir), demoSettings, windowServices(Demo::services(demoDir)));
        model->markDemo();
    }
    ThumbnailProvider thumbnails;
    MainWindow window(*model, thumbnails, userSettings);
    window.show();
    model->startInBackground();
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, model.get(), [&] { model->saveNow(); });
    return QApplication::exec();
}

} // namespace

AppModel::Services windowServices(AppModel::Services services) {
    services.confirm = [](const std::string& message, const std::string& detail, const std::string& button) {
        return confirmInDialog(QApplication::activeWindow(), message, detail, button);
    };
    // The desktop's own authentication dialog through polkit, else our password dialog; never
    // the terminal, which a window's user may not even have.
    services.authenticate = [auth = std::shared_ptr<Authenticator>(systemAuthenticator(passwordDialogPrompt()))](
                                const std::string& reason) { return auth->authenticate(reason); };
    return services;
}

int run(int argc, char** argv) {
    const std::string snapshots = env("LUMIVALE_SNAPSHOT_DIR");
    if (!snapshots.empty()) {
        // Rendered without a display, at twice the pixels of a 1440 × 900 window.
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        setenv("QT_SCALE_FACTOR", "2", 1);
        qInstallMessageHandler(onlyErrors);
    }
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Lumivale");
    QApplication::setApplicationName("Lumivale");
    QApplication::setApplicationVersion(LUMIVALE_VERSION);
    QGuiApplication::setDesktopFileName("app.orvane.lumivale");
    QApplication::setWindowIcon(Icons::app());
    Brand::apply(app);
    if (!snapshots.empty())
        return Snapshots::render(snapshots, env("LUMIVALE_SNAPSHOT_ONLY"), env("LUMIVALE_DEMO_DIR"));
    return runWindow(env("LUMIVALE_DEMO_DIR"));
}

} // namespace lumivale::WindowApp
