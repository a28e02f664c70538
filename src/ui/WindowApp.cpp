#include "ui/WindowApp.h"

#include "app/AppModel.h"
#include "app/Demo.h"
#include "app/ThumbnailProvider.h"
#include "platform/Authenticator.h"
#include "platform/DataFolderLock.h"
#include "ui/Brand.h"
#include "ui/Confirm.h"
#include "ui/DesktopSearch.h"
#include "ui/Icons.h"
#include "ui/MainWindow.h"
#include "ui/PasswordDialog.h"
#include "ui/Snapshots.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QSettings>
#include <QTimer>
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

// Brings the window to the front, with the token of the launcher that asked.
void present(MainWindow& window, const QVariantMap& platformData) {
    if (const QString token = platformData.value("activation-token").toString(); !token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    if (const QString id = platformData.value("desktop-startup-id").toString(); !id.isEmpty())
        qputenv("DESKTOP_STARTUP_ID", id.toUtf8());
    window.showNormal();
    window.raise();
    window.activateWindow();
}

// A second window on the same library, with no session bus to find the first: said in a dialog,
// as the one who started it may have no terminal.
int refuseSecondWindow(const std::string& dataDir, const DataFolderLock::Holder& holder) {
    QMessageBox::critical(nullptr, "Lumivale",
                          QString("Lumivale is already open (process %1) with the library in %2.")
                              .arg(holder.pid)
                              .arg(QString::fromStdString(dataDir)));
    return 1;
}

int runWindow(const Start& start) {
    const std::string demoDir = env("LUMIVALE_DEMO_DIR");
    QSettings userSettings(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "Lumivale");
    // A demonstration keeps its settings apart from the user's and saves nothing of its own.
    QSettings demoSettings(QSettings::IniFormat, QSettings::UserScope, "Lumivale",
                           "app.orvane.lumivale.demo");
    std::unique_ptr<AppModel> model;
    if (demoDir.empty()) {
        model =
            std::make_unique<AppModel>(Paths::live(userSettings), userSettings, windowServices({}));
    } else {
        if (Status drawn = Demo::draw(demoDir, now()); !drawn) {
            std::cerr << "lumivale: the demonstration screenshots couldn't be drawn into "
                      << demoDir << ": " << drawn.message() << "\n";
            return 1;
        }
        model = std::make_unique<AppModel>(Demo::paths(demoDir), demoSettings,
                                           windowServices(Demo::services(demoDir)));
        model->markDemo();
    }
    ThumbnailProvider thumbnails;
    std::unique_ptr<MainWindow> window;

    // What waits for the library to be in: pictures to show, commands of other processes.
    bool started = false;
    std::vector<std::function<void()>> afterLoad;
    auto whenLoaded = [&](std::function<void()> then) {
        if (started && !model->loading())
            then();
        else
            afterLoad.push_back(std::move(then));
    };
    QObject::connect(model.get(), &AppModel::loadingChanged, model.get(), [&] {
        if (model->loading()) return;
        for (auto& then : std::exchange(afterLoad, {}))
            then();
    });
    auto showPictures = [&](const QStringList& paths) {
        whenLoaded([&model, paths] {
            for (const QString& path : paths)
                model->showPicture(path.toStdString());
        });
    };

    ApplicationBus::Handlers handlers;
    handlers.activate = [&](const QVariantMap& platformData) { present(*window, platformData); };
    handlers.open = [&](const QStringList& paths, const QVariantMap& platformData) {
        present(*window, platformData);
        showPictures(paths);
    };
    handlers.action = [&](const QString& action, const QVariantList& parameters,
                          const QVariantMap& platformData) {
        const QString parameter = parameters.isEmpty() ? QString() : parameters.front().toString();
        present(*window, platformData);
        if (action == "show") showPictures({parameter});
        if (action == "search") model->setQuery(parameter.toStdString());
        if (action == "tidy") model->setShowTidy(true);
    };
    handlers.run = [&](const ApplicationBus::Command& command) {
        while (!started || model->loading())
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents,
                                            100);
        return start.runCommand(*model, command);
    };
    ApplicationBus bus(model->paths().data, std::move(handlers));

    // One window, and one writer, for a library: a second start brings the first window forward.
    DataFolderLock lock;
    if (!model->isDemo()) {
        // The desktop's search answers from this model once the name is ours.
        QDBusConnection session = QDBusConnection::sessionBus();
        if (session.isConnected()) {
            DesktopSearch::Callbacks search;
            search.show = [&](const std::string& path) {
                present(*window, {});
                model->showPicture(path);
            };
            search.search = [&](const std::string& query) {
                present(*window, {});
                model->setQuery(query);
            };
            if (Status registered = DesktopSearch::registerOn(session, *model, std::move(search));
                !registered)
                std::cerr << "lumivale: the desktop's search can't reach Lumivale: "
                          << registered.message() << "\n";
        }
        if (bus.claim() == ApplicationBus::Claim::elsewhere)
            return ApplicationBus::activateOwner(QDBusConnection::sessionBus(), start.open) ? 0 : 1;
        if (lock.take(model->paths().data, DataFolderLock::Role::window) ==
            DataFolderLock::Outcome::held) {
            const auto holder = DataFolderLock::holder(model->paths().data);
            if (holder && holder->role == DataFolderLock::Role::window)
                return refuseSecondWindow(model->paths().data, *holder);
        }
    }

    window = std::make_unique<MainWindow>(*model, thumbnails, userSettings);
    if (!start.service) window->show();
    // A command that is changing the library finishes before the window reads it.
    QTimer lockWait;
    auto startModel = [&] {
        if (!model->isDemo() && !lock.isTaken() &&
            lock.take(model->paths().data, DataFolderLock::Role::window) ==
                DataFolderLock::Outcome::held)
            return;
        lockWait.stop();
        started = true;
        if (!start.service) return model->startInBackground();
        // Started for a search, with no window to paint: the library is read before any answer.
        model->start();
        for (auto& then : std::exchange(afterLoad, {}))
            then();
    };
    QObject::connect(&lockWait, &QTimer::timeout, startModel);
    lockWait.start(200);
    startModel();
    showPictures(start.open);
    // Started by the bus for a search and never shown: gone again after a while.
    if (start.service)
        QTimer::singleShot(std::chrono::minutes(5), qApp, [&] {
            if (!window->isVisible()) QApplication::quit();
        });
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, model.get(), [&] { model->saveNow(); });
    return QApplication::exec();
}

} // namespace

AppModel::Services windowServices(AppModel::Services services) {
    services.confirm = [](const std::string& message, const std::string& detail,
                          const std::string& button) {
        return confirmInDialog(QApplication::activeWindow(), message, detail, button);
    };
    // The desktop's own authentication dialog through polkit, else our password dialog; never
    // the terminal, which a window's user may not even have.
    services.authenticate =
        [auth = std::shared_ptr<Authenticator>(systemAuthenticator(passwordDialogPrompt()))](
            const std::string& reason) { return auth->authenticate(reason); };
    return services;
}

int run(int argc, char** argv, const Start& start) {
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
        return Snapshots::render(snapshots, env("LUMIVALE_SNAPSHOT_ONLY"),
                                 env("LUMIVALE_DEMO_DIR"));
    return runWindow(start);
}

} // namespace lumivale::WindowApp
