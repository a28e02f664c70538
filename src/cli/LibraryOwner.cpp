#include "cli/LibraryOwner.h"

#include "app/BusNames.h"
#include "cli/Command.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDir>
#include <QEventLoop>
#include <QSettings>
#include <chrono>
#include <iostream>
#include <limits>
#include <sstream>
#include <thread>

namespace lumivale::cli {
namespace {

// Answers the window's questions about our command on this process's terminal.
class TerminalQuestions : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.orvane.lumivale.Terminal")

  public slots:
    Q_SCRIPTABLE bool Confirm(const QString& message, const QString& detail,
                              const QString& button) {
        return confirmOnTerminal(message.toStdString(), detail.toStdString(), button.toStdString());
    }
};

// Puts a command's output, working folder and host in place while it runs for another process.
class HostedScope {
  public:
    HostedScope(std::ostream& out, std::ostream& err, const std::string& cwd, const Host& host)
        : out_(std::cout.rdbuf(out.rdbuf())), err_(std::cerr.rdbuf(err.rdbuf())),
          cwd_(QDir::currentPath()) {
        QDir::setCurrent(QString::fromStdString(cwd));
        setCurrentHost(&host);
    }
    ~HostedScope() {
        setCurrentHost(nullptr);
        QDir::setCurrent(cwd_);
        std::cout.rdbuf(out_);
        std::cerr.rdbuf(err_);
    }
    HostedScope(const HostedScope&) = delete;
    HostedScope& operator=(const HostedScope&) = delete;

  private:
    std::streambuf* out_;
    std::streambuf* err_;
    QString cwd_;
};

std::string holderText(const std::optional<DataFolderLock::Holder>& holder) {
    return holder && holder->pid > 0 ? " (process " + std::to_string(holder->pid) + ")" : "";
}

} // namespace

std::string dataFolder() {
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, "Lumivale", "Lumivale");
    return Paths::live(settings).data;
}

std::optional<int> runInWindow(const std::vector<std::string>& args, const std::string& dataDir) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface() ||
        !bus.interface()->isServiceRegistered(Bus::service))
        return std::nullopt;
    TerminalQuestions questions;
    bus.registerObject(Bus::terminalPath, &questions, QDBusConnection::ExportScriptableSlots);

    QStringList arguments;
    for (const std::string& arg : args)
        arguments << QString::fromStdString(arg);
    const QVariantMap terminal{{"stdin", stdinIsTerminal()}, {"stdout", stdoutIsTerminal()}};
    QDBusMessage call =
        QDBusMessage::createMethodCall(Bus::service, Bus::path, Bus::commandLine, "Run");
    call << arguments << QString::fromStdString(dataDir) << QDir::currentPath() << terminal;
    // A scan or a tidy takes as long as it takes; the window answers when it is done.
    QDBusPendingCallWatcher watcher(bus.asyncCall(call, std::numeric_limits<int>::max()));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    if (!watcher.isFinished()) loop.exec();
    bus.unregisterObject(Bus::terminalPath);

    const QDBusMessage reply = watcher.reply();
    if (reply.type() == QDBusMessage::ErrorMessage) {
        // Another library, or a window that closed meanwhile: the command runs here.
        if (reply.errorName() == Bus::otherLibrary ||
            reply.errorName() == "org.freedesktop.DBus.Error.ServiceUnknown")
            return std::nullopt;
        printError("the open Lumivale window couldn't run the command: " +
                   reply.errorMessage().toStdString());
        return Exit::failed;
    }
    const QVariantList results = reply.arguments();
    if (results.size() != 3) {
        printError("the open Lumivale window gave an answer that can't be read");
        return Exit::failed;
    }
    std::cout << results[1].toString().toStdString() << std::flush;
    std::cerr << results[2].toString().toStdString() << std::flush;
    return results[0].toInt();
}

std::optional<DataFolderLock> lockForChanges(const std::string& dataDir) {
    DataFolderLock lock;
    for (bool toldWaiting = false;; std::this_thread::sleep_for(std::chrono::milliseconds(100))) {
        // A folder where no lock file can be made is one where nothing can be saved either; the
        // save says so.
        if (lock.take(dataDir, DataFolderLock::Role::command) != DataFolderLock::Outcome::held)
            return lock;
        const auto holder = DataFolderLock::holder(dataDir);
        if (holder && holder->role == DataFolderLock::Role::window) {
            printError(
                "a Lumivale window" + holderText(holder) + " has the library in " + dataDir +
                " open and couldn't be reached over the session bus to make this change; make it "
                "there, or close the window first");
            return std::nullopt;
        }
        if (!toldWaiting)
            printError("waiting for another lumivale command" + holderText(holder) +
                       " that is changing the library in " + dataDir + "…");
        toldWaiting = true;
    }
}

HostedRun runHosted(const std::vector<std::string>& args, const std::string& cwd,
                    const Host& host) {
    HostedRun run;
    const Command* command = args.empty() ? nullptr : commandNamed(args[0]);
    if (!command || command->access == Access::none) {
        run.status = Exit::usage;
        run.err = "lumivale: the window runs only the commands that read or change the library\n";
        return run;
    }
    std::ostringstream out, err;
    {
        HostedScope scope(out, err, cwd, host);
        run.status = command->run({args.begin() + 1, args.end()});
    }
    run.out = out.str();
    run.err = err.str();
    return run;
}

} // namespace lumivale::cli

#include "LibraryOwner.moc"
