// lumivale scan: lists every source and reads what waits, as the application does.

#include "cli/Command.h"
#include "cli/Output.h"
#include "cli/Session.h"

#include <QJsonObject>

#include <chrono>
#include <cstdio>
#include <iostream>

namespace lumivale::cli {
namespace {

// A one-line progress bar on standard error: done / total, pictures per second, time left.
class ProgressBar {
public:
    void draw(int64_t done, int64_t total) {
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
        const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
        const int width = 30;
        const int filled = total > 0 ? static_cast<int>(width * done / total) : 0;
        std::string bar(static_cast<size_t>(filled), '#');
        bar.resize(width, '-');
        char left[32] = "";
        if (rate > 0)
            std::snprintf(left, sizeof left, "%.0f s left", static_cast<double>(total - done) / rate);
        std::fprintf(stderr, "\rReading [%s] %lld/%lld  %.1f pictures/s  %s\033[K", bar.c_str(),
                     static_cast<long long>(done), static_cast<long long>(total), rate, left);
        std::fflush(stderr);
        drawn_ = true;
    }
    void finish() {
        if (drawn_)
            std::fprintf(stderr, "\r\033[K");
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    bool drawn_ = false;
};

int scan(std::vector<std::string> args) {
    const bool json = takeFlag(args, "--json");
    if (!args.empty())
        return usageError("scan takes no arguments besides --json");
    Session session;
    AppModel& model = session.model();
    ProgressBar bar;
    if (stderrIsTerminal())
        QObject::connect(&model, &AppModel::progressChanged, [&] {
            if (model.progress())
                bar.draw(model.progress()->done, model.progress()->total);
        });
    int64_t read = 0;
    QObject::connect(&model, &AppModel::shotRead, [&read] { ++read; });
    model.rescan();
    model.waitUntilIdle();
    bar.finish();
    if (!saved(model))
        return Exit::failed;

    const Tally tally = model.tally();
    if (json) {
        QJsonObject result = tallyJson(tally);
        result["read"] = static_cast<qint64>(read);
        printJsonLine(result);
    } else {
        std::cout << "Read " << read << (read == 1 ? " picture" : " pictures") << ".\n" << tallyText(tally);
    }
    for (const Source& source : model.sources())
        if (source.enabled && !source.readable)
            printError("can't open " + source.path);
    for (const std::string& path : model.leftAlone())
        printError("left alone " + printable(path) + ": its name isn't valid UTF-8");
    return Exit::done;
}

LUMIVALE_COMMAND("scan", "scan [--json]", "finds new screenshots, reads them and prints the counts", scan, Access::changes);

} // namespace
} // namespace lumivale::cli
