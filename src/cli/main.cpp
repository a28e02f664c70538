// The `lumivale` program: with a subcommand it works headless; --help lists the subcommands.

#include "cli/Command.h"
#include "cli/LibraryOwner.h"
#include "reading/Reader.h"
#include "ui/WindowApp.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace {

void printHelp() {
    std::cout << "Lumivale " LUMIVALE_VERSION " keeps your screenshots in order.\n\n"
                 "Usage: lumivale [--data DIR] COMMAND [OPTIONS]\n\n"
                 "Commands:\n";
    for (const auto& command : lumivale::cli::commands())
        std::cout << "  lumivale " << command.usage << "\n      " << command.summary << "\n";
    std::cout << "\nOptions for every command:\n"
                 "  --data DIR   keep Lumivale's data in DIR (default: $LUMIVALE_DATA_DIR, else\n"
                 "               ~/.local/share/Lumivale)\n"
                 "  --help       show this help\n"
                 "  --version    show the version\n\n"
                 "Exit status: 0 done, 1 the action failed in whole or in part, 2 wrong usage.\n";
}

// Qt's own notes (a missing runtime folder, a font fallback) are not for people using the
// command line; only its real errors reach standard error.
void quietQtNotes(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::cerr << "lumivale: " << message.toStdString() << "\n";
}

// Work without a display (scripts, CI, a terminal over ssh) on Qt's offscreen platform.
void chooseHeadlessPlatform() {
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

// The pictures named by every argument (paths or file URIs), or none when any is something else.
QStringList picturesToOpen(const std::vector<std::string>& args) {
    QStringList paths;
    for (const std::string& arg : args) {
        const QString given = QString::fromStdString(arg);
        const QUrl url(given);
        const QFileInfo file(url.isLocalFile() ? url.toLocalFile() : given);
        if (!file.isFile() || lumivale::cli::commandNamed(arg)) return {};
        paths << file.absoluteFilePath();
    }
    return paths;
}

lumivale::ApplicationBus::CommandResult runForAnotherProcess(lumivale::AppModel& model,
                                                              const lumivale::ApplicationBus::Command& command) {
    const lumivale::cli::Host host{&model, command.stdinTerminal, command.stdoutTerminal, command.ask};
    const auto run = lumivale::cli::runHosted(command.args, command.cwd, host);
    return {run.status, run.out, run.err};
}

} // namespace

int main(int argc, char** argv) {
    lumivale::Reader::startWithOneRecognitionThread(argv);

    std::vector<std::string> args(argv + 1, argv + argc);
    // The self-check replaces the normal start when LUMIVALE_SELFTEST names its folder.
    if (const char* dir = std::getenv("LUMIVALE_SELFTEST"); dir && *dir && args.empty())
        args = {"selfcheck", dir};
    bool missing = false;
    const auto data = lumivale::cli::takeValues(args, "--data", missing);
    if (missing || (!data.empty() && data.back().empty()))
        return lumivale::cli::usageError("--data needs a folder");
    if (!data.empty())
        setenv("LUMIVALE_DATA_DIR", data.back().c_str(), 1);

    // No command: the window, when there is a display to show it on or pictures of it to render;
    // with pictures, the window showing them ("Open With"); started by the session bus, the
    // window's process without the window until something asks for it.
    const bool display = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    lumivale::WindowApp::Start start{picturesToOpen(args), false, runForAnotherProcess};
    if (!args.empty() && args[0] == "--gapplication-service") {
        start.service = true;
        chooseHeadlessPlatform();
        return lumivale::WindowApp::run(argc, argv, start);
    }
    if ((args.empty() || !start.open.isEmpty()) && (display || std::getenv("LUMIVALE_SNAPSHOT_DIR")))
        return lumivale::WindowApp::run(argc, argv, start);
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        printHelp();
        return lumivale::cli::Exit::done;
    }
    if (args[0] == "--version") {
        if (args.size() > 1)
            return lumivale::cli::usageError("--version takes nothing after it");
        std::cout << "lumivale " LUMIVALE_VERSION "\n";
        return lumivale::cli::Exit::done;
    }
    if (args[0] == "selfcheck" && !lumivale::cli::giveUpFileOverrides())
        std::cerr << "lumivale: the self-check keeps root's power over every file, so a check of "
                     "permissions may fail\n";
    if (const lumivale::cli::Command* command = lumivale::cli::commandNamed(args[0])) {
        chooseHeadlessPlatform();
        qInstallMessageHandler(quietQtNotes);
        QGuiApplication app(argc, argv);
        QGuiApplication::setOrganizationName("Lumivale");
        QGuiApplication::setApplicationName("Lumivale");
        std::optional<lumivale::DataFolderLock> lock;
        if (command->access != lumivale::cli::Access::none) {
            const std::string dataDir = lumivale::cli::dataFolder();
            if (const auto status = lumivale::cli::runInWindow(args, dataDir))
                return *status;
            if (command->access == lumivale::cli::Access::changes && !(lock = lumivale::cli::lockForChanges(dataDir)))
                return lumivale::cli::Exit::failed;
        }
        args.erase(args.begin());
        return command->run(std::move(args));
    }
    const bool option = args[0].size() > 1 && args[0][0] == '-';
    return lumivale::cli::usageError("unknown " + std::string(option ? "option" : "command") + " '" + args[0] +
                                     "' (see lumivale --help)");
}
