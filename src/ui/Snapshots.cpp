#include "ui/Snapshots.h"

#include "app/AppModel.h"
#include "app/Demo.h"
#include "app/ThumbnailProvider.h"
#include "core/Facts.h"
#include "ui/Brand.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>

#include <functional>
#include <iostream>

namespace lumivale::Snapshots {
namespace {

// One screen: its file name and how to bring the model there.
struct Screen {
    const char* name;
    std::function<void(AppModel&)> setUp;
    bool empty = false; // shown over a library with no screenshots
    bool dark = false;  // drawn in the dark look
};

const Shot* firstOn(AppModel& model, const Place& place, const std::function<bool(const Shot&)>& wanted) {
    for (const ShotPtr& shot : model.shots(place))
        if (wanted(*shot))
            return shot.get();
    return nullptr;
}

void select(AppModel& model, const Place& place, const std::function<bool(const Shot&)>& wanted) {
    model.setPlace(place);
    if (const Shot* shot = firstOn(model, place, wanted))
        model.setSelection(shot->path);
}

const std::vector<Screen>& screens() {
    using Kind = Place::Kind;
    static const std::vector<Screen> list = {
        {"overview", [](AppModel& m) { m.setPlace(Place::of(Kind::overview)); }},
        {"all", [](AppModel& m) { m.setPlace(Place::of(Kind::all)); }},
        {"shelf-bills", [](AppModel& m) { m.setPlace(Place::ofShelf(Shelf::bills)); }},
        {"private", [](AppModel& m) { m.setPlace(Place::of(Kind::privateOnes)); }},
        {"search", [](AppModel& m) {
             m.setPlace(Place::of(Kind::all));
             m.setQuery("total");
         }},
        {"inspector", [](AppModel& m) {
             select(m, Place::ofShelf(Shelf::bills), [](const Shot& s) {
                 const auto facts = Facts::of(s);
                 return std::any_of(facts.begin(), facts.end(), [](const Fact& f) { return f.label == "Total"; });
             });
         }},
        {"inspector-revealed", [](AppModel& m) {
             select(m, Place::of(Kind::privateOnes), [](const Shot& s) { return s.category() == Shelf::ids; });
             if (m.selected())
                 m.reveal(m.selected()->path);
         }},
        {"empty", [](AppModel& m) { m.setPlace(Place::of(Kind::overview)); }, true},
        {"overview-dark", [](AppModel& m) { m.setPlace(Place::of(Kind::overview)); }, false, true},
        {"search-dark", [](AppModel& m) {
             m.setPlace(Place::of(Kind::all));
             m.setQuery("total");
         }, false, true},
    };
    return list;
}

// Lets the window settle: events run until no thumbnail has arrived for a while.
void settle(ThumbnailProvider& thumbnails) {
    QElapsedTimer quiet, total;
    quiet.start();
    total.start();
    auto connection = QObject::connect(&thumbnails, &ThumbnailProvider::ready, [&quiet] { quiet.restart(); });
    while (quiet.elapsed() < 400 && total.elapsed() < 15000)
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    QObject::disconnect(connection);
}

// A model over demonstration data, read and ready to show.
struct Stage {
    QSettings settings;
    QSettings windowSettings;
    AppModel model;
    ThumbnailProvider thumbnails;
    MainWindow window;

    Stage(const std::string& dir, const QString& scratch)
        : settings(scratch + "/app.orvane.lumivale.demo.conf", QSettings::IniFormat),
          windowSettings(scratch + "/window.conf", QSettings::IniFormat),
          model(Demo::paths(dir), settings, Demo::services(dir)), window(model, thumbnails, windowSettings) {
        model.markDemo();
        window.resize(1440, 900);
        window.show();
        model.start();
        model.waitUntilIdle();
    }
};

} // namespace

int render(const std::string& out, const std::string& only, const std::string& demoDir) {
    QTemporaryDir scratch;
    if (!scratch.isValid() || !QDir().mkpath(QString::fromStdString(out))) {
        std::cerr << "lumivale: can't write snapshots into " << out << "\n";
        return 1;
    }
    // A home of its own keeps the demonstration's folders short to read and its thumbnails out
    // of the user's cache.
    const QString home = scratch.filePath("home");
    QDir().mkpath(home);
    qputenv("HOME", home.toUtf8());
    qunsetenv("XDG_CACHE_HOME");
    const std::string dir = demoDir.empty() ? home.toStdString() : demoDir;
    if (Status drawn = Demo::draw(dir, now()); !drawn) {
        std::cerr << "lumivale: the demonstration screenshots couldn't be drawn: " << drawn.message() << "\n";
        return 1;
    }
    std::unique_ptr<Stage> full, empty, dark;
    int failures = 0, written = 0;
    for (const Screen& screen : screens()) {
        if (!only.empty() && only != screen.name)
            continue;
        auto& stage = screen.empty ? empty : screen.dark ? dark : full;
        // Widgets take their colours when made, so the dark look has a window of its own.
        Brand::apply(*qApp, screen.dark ? Brand::Look::dark : Brand::Look::light);
        if (!stage)
            stage = std::make_unique<Stage>(screen.empty ? scratch.filePath("home/Nothing").toStdString() : dir,
                                            scratch.path() + (screen.empty ? "/empty" : screen.dark ? "/dark" : "/full"));
        stage->model.setQuery("");
        stage->model.setSelection(std::nullopt);
        screen.setUp(stage->model);
        settle(stage->thumbnails);
        const QString file = QDir(QString::fromStdString(out)).filePath(QString(screen.name) + ".png");
        if (stage->window.grab().save(file)) {
            std::cout << file.toStdString() << "\n";
            ++written;
        } else {
            std::cerr << "lumivale: couldn't write " << file.toStdString() << "\n";
            ++failures;
        }
    }
    if (written == 0 && failures == 0) {
        std::cerr << "lumivale: no screen is called " << only << "\n";
        return 2;
    }
    return failures == 0 ? 0 : 1;
}

} // namespace lumivale::Snapshots
