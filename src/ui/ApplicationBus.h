#pragma once

// The window's process on the session bus as "app.orvane.lumivale": the desktop's launchers and a
// second `lumivale` reach it through org.freedesktop.Application, and a command typed in a
// terminal while it is open runs here, on the window's model, so only one process writes the
// library.

#include "app/AppModel.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace lumivale {

class ApplicationBus : public QObject {
    Q_OBJECT

  public:
    // What a command run for another process printed, and its exit status.
    struct CommandResult {
        int status = 0;
        std::string out;
        std::string err;
    };
    struct Command {
        std::vector<std::string> args; // the command's name first
        std::string cwd;
        bool stdinTerminal = false;
        bool stdoutTerminal = false;
        AppModel::Confirm ask; // asks at the terminal of the process that handed the command over
    };
    struct Handlers {
        std::function<void(const QVariantMap& platformData)> activate;
        std::function<void(const QStringList& paths, const QVariantMap& platformData)> open;
        std::function<void(const QString& action, const QVariantList& parameters,
                           const QVariantMap& platformData)>
            action;
        // Runs a command on the window's model, once it is ready.
        std::function<CommandResult(const Command& command)> run;
    };
    enum class Claim { owned, elsewhere, noBus };

    // `dataDir` is the folder of the library the window has open: commands for another one are
    // declined, and run in their own process.
    ApplicationBus(std::string dataDir, Handlers handlers, QObject* parent = nullptr);

    // Answers on `bus` under the application's name; `elsewhere` when another process has it.
    Claim claim(QDBusConnection bus = QDBusConnection::sessionBus());
    QDBusConnection connection() const { return bus_; }

    // Asks the process that has the name to show its window, or to open `paths` in it.
    static bool activateOwner(QDBusConnection bus, const QStringList& paths);

    // The calls the bus delivers (the adaptors forward them here).
    void activate(const QVariantMap& platformData);
    void open(const QStringList& uris, const QVariantMap& platformData);
    void activateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData);
    void runLater(const QStringList& args, const QString& dataDir, const QString& cwd,
                  const QVariantMap& terminal, const QDBusMessage& message);

  private:
    struct Pending {
        Command command;
        QString dataDir;
        QDBusMessage message;
    };
    std::string dataDir_;
    Handlers handlers_;
    QDBusConnection bus_{QString()};
    std::deque<Pending> queue_;
    bool running_ = false;

    void runQueue();
};

} // namespace lumivale
