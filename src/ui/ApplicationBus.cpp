#include "ui/ApplicationBus.h"

#include "app/BusNames.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnectionInterface>
#include <QTimer>
#include <QUrl>
#include <filesystem>

namespace lumivale {
namespace {

constexpr int terminalAnswerMs = 10 * 60 * 1000;

// The desktop's way in: its launchers, "Open With" and a second start of the program.
class ApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    explicit ApplicationAdaptor(ApplicationBus* bus) : QDBusAbstractAdaptor(bus), bus_(bus) {}

  public slots:
    void Activate(const QVariantMap& platformData) { bus_->activate(platformData); }
    void Open(const QStringList& uris, const QVariantMap& platformData) {
        bus_->open(uris, platformData);
    }
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData) {
        bus_->activateAction(action, parameters, platformData);
    }

  private:
    ApplicationBus* bus_;
};

// Commands typed in a terminal while the window is open. The reply is sent when the command is
// done, so a long scan holds no one up meanwhile.
class CommandLineAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.orvane.lumivale.CommandLine")

  public:
    explicit CommandLineAdaptor(ApplicationBus* bus) : QDBusAbstractAdaptor(bus), bus_(bus) {}

  public slots:
    int Run(const QStringList& args, const QString& dataDir, const QString& cwd,
            const QVariantMap& terminal, const QDBusMessage& message, QString& out, QString& err) {
        bus_->runLater(args, dataDir, cwd, terminal, message);
        out.clear();
        err.clear();
        return 0;
    }

  private:
    ApplicationBus* bus_;
};

std::string sameFolderForm(const std::string& path) {
    std::error_code ec;
    const auto canonical = std::filesystem::weakly_canonical(path, ec);
    return (ec ? std::filesystem::path(path) : canonical).lexically_normal().string();
}

// Asks at the terminal of the process that handed a command over; no answer is a no.
AppModel::Confirm askAt(QDBusConnection bus, QString caller) {
    return [bus, caller](const std::string& message, const std::string& detail,
                         const std::string& button) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(caller, Bus::terminalPath, Bus::terminal, "Confirm");
        call << QString::fromStdString(message) << QString::fromStdString(detail)
             << QString::fromStdString(button);
        const QDBusMessage reply = bus.call(call, QDBus::Block, terminalAnswerMs);
        return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
               reply.arguments().front().toBool();
    };
}

} // namespace

ApplicationBus::ApplicationBus(std::string dataDir, Handlers handlers, QObject* parent)
    : QObject(parent), dataDir_(sameFolderForm(dataDir)), handlers_(std::move(handlers)) {
    new ApplicationAdaptor(this);
    new CommandLineAdaptor(this);
}

ApplicationBus::Claim ApplicationBus::claim(QDBusConnection bus) {
    if (!bus.isConnected()) return Claim::noBus;
    // The objects first, so that no call that comes with the name finds nothing there.
    if (!bus.registerObject(Bus::path, this, QDBusConnection::ExportAdaptors))
        return Claim::elsewhere;
    if (!bus.registerService(Bus::service)) {
        bus.unregisterObject(Bus::path);
        return Claim::elsewhere;
    }
    bus_ = bus;
    return Claim::owned;
}

bool ApplicationBus::activateOwner(QDBusConnection bus, const QStringList& paths) {
    QVariantMap platformData;
    // What lets the first window come to the front: the launcher's startup id or token.
    const std::pair<const char*, const char*> tokens[] = {
        {"desktop-startup-id", "DESKTOP_STARTUP_ID"}, {"activation-token", "XDG_ACTIVATION_TOKEN"}};
    for (const auto& [key, variable] : tokens)
        if (const QByteArray value = qgetenv(variable); !value.isEmpty())
            platformData[key] = QString::fromUtf8(value);
    QDBusMessage call =
        QDBusMessage::createMethodCall(Bus::service, Bus::path, "org.freedesktop.Application",
                                       paths.isEmpty() ? "Activate" : "Open");
    if (!paths.isEmpty()) {
        QStringList uris;
        for (const QString& path : paths)
            uris << QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
        call << uris;
    }
    call << platformData;
    return bus.call(call, QDBus::Block, 5000).type() == QDBusMessage::ReplyMessage;
}

void ApplicationBus::activate(const QVariantMap& platformData) {
    handlers_.activate(platformData);
}

void ApplicationBus::open(const QStringList& uris, const QVariantMap& platformData) {
    QStringList paths;
    for (const QString& uri : uris)
        if (const QUrl url(uri); url.isLocalFile()) paths << url.toLocalFile();
    handlers_.open(paths, platformData);
}

void ApplicationBus::activateAction(const QString& action, const QVariantList& parameters,
                                    const QVariantMap& platformData) {
    handlers_.action(action, parameters, platformData);
}

void ApplicationBus::runLater(const QStringList& args, const QString& dataDir, const QString& cwd,
                              const QVariantMap& terminal, const QDBusMessage& message) {
    message.setDelayedReply(true);
    Command command;
    for (const QString& arg : args)
        command.args.push_back(arg.toStdString());
    command.cwd = cwd.toStdString();
    command.stdinTerminal = terminal.value("stdin").toBool();
    command.stdoutTerminal = terminal.value("stdout").toBool();
    command.ask = askAt(bus_, message.service());
    queue_.push_back({std::move(command), dataDir, message});
    // Not inside the call: a command that waits for reading turns the event loop, and a second
    // command arriving then must wait its turn instead of running in the middle of the first.
    QTimer::singleShot(0, this, &ApplicationBus::runQueue);
}

void ApplicationBus::runQueue() {
    if (running_) return;
    running_ = true;
    while (!queue_.empty()) {
        const Pending pending = std::move(queue_.front());
        queue_.pop_front();
        if (sameFolderForm(pending.dataDir.toStdString()) != dataDir_) {
            bus_.send(pending.message.createErrorReply(
                Bus::otherLibrary,
                "The window has the library in " + QString::fromStdString(dataDir_) + " open"));
            continue;
        }
        const CommandResult result = handlers_.run(pending.command);
        bus_.send(pending.message.createReply({result.status, QString::fromStdString(result.out),
                                               QString::fromStdString(result.err)}));
    }
    running_ = false;
}

} // namespace lumivale

#include "ApplicationBus.moc"
