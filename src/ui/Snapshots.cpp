#include "ui/Snapshots.h"

#include "app/AppModel.h"
#include "app/Demo.h"
#include "app/ThumbnailProvider.h"
#include "core/Facts.h"
#include "ui/Brand.h"
#include "ui/MainWindow.h"
#include "ui/SettingsDialog.h"
#include "ui/TidySheet.h"
#include "ui/WelcomeSheet.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QSettings>
#include <QTemporaryDir>

#include <functional>
#include <iostream>

namespace lumivale::Snapshots {
namespace {

// One screen: its file name and how to bring the model there, and for a sheet or dialog, how to
// open it over the window.
struct Screen {
    const char* name;
    std::function<void(AppModel&)> setUp;
    bool empty = false; // shown over a library with no screenshots
    bool dark = false;  // drawn in the dark look
    std::function<QDialog*(AppModel&, MainWindow&)> dialog = {};
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

// Clicks a control of a dialog, as a person choosing an option would.
QDialog* clicking(QDialog* dialog, const char* name) {
    if (auto* button = dialog ? dialog->findChild<QAbstractButton*>(name) : nullptr)
        button->click();
    return dialog;
}

QDialog* openTidy(AppModel& m, MainWindow& w) {
    m.setShowTidy(true);
    return w.tidySheet();
}

// The made-up library has a locked ID card: the first ID screenshot, locked away once.
void lockAnId(AppModel& m) {
    if (m.vaultCount() == 0)
        if (const Shot* id = firstOn(m, Place::of(Place::Kind::all), [](const Shot& s) { return s.category() == Shelf::ids; }))
            m.lock({id->path});
    m.dismissBanner();
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
        {"tidy-file", [](AppModel& m) { m.setPlace(Place::of(Kind::all)); }, false, false, openTidy},
        {"tidy-file-renamed", [](AppModel& m) { m.setPlace(Place::of(Kind::all)); }, false, false,
         [](AppModel& m, MainWindow& w) { return clicking(openTidy(m, w), "renameBox"); }},
        {"tidy-clear", [](AppModel& m) { m.setPlace(Place::of(Kind::all)); }, false, false,
         [](AppModel& m, MainWindow& w) { return clicking(clicking(openTidy(m, w), "clearMode"), "age30"); }},
        {"welcome", [](AppModel& m) { m.setPlace(Place::of(Kind::overview)); }, false, false,
         [](AppModel& m, MainWindow& w) -> QDialog* { return new WelcomeSheet(m, &w); }},
        {"settings", [](AppModel& m) { m.setPlace(Place::of(Kind::overview)); }, false, false,
         [](AppModel&, MainWindow& w) -> QDialog* { return w.showSettings(); }},
        // Locking changes the library, so the locked area comes last.
        {"locked-closed", [](AppModel& m) {
             lockAnId(m);
             m.lockVault();
             m.setPlace(Place::of(Kind::locked));
         }},
        {"locked-open", [](AppModel& m) {
             lockAnId(m);
             m.setPlace(Place::of(Kind::locked));
             m.unlockVault();
             if (!m.lockedItems().empty())
                 m.setLockedSelection(m.lockedItems().front().id);
         }},
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

// The demonstration's services; its owner says yes to every question, since the data is made up.
AppModel::Services stageServices(const std::string& dir) {
    AppModel::Services services = Demo::services(dir);
    services.authenticate = [](const std::string&) { return true; };
    services.confirm = [](const std::string&, const std::string&, const std::string&) { return true; };
    return services;
}

// The window with the dialog over it, dimmed behind, as the user sees a sheet.
QPixmap picture(MainWindow& window, QDialog* dialog) {
    QPixmap shot = window.grab();
    if (!dialog)
        return shot;
    // Its full size: adjustSize would hold it to two thirds of the small offscreen screen.
    const QSize hint = dialog->sizeHint().expandedTo(dialog->minimumSizeHint());
    dialog->resize(hint.width(), dialog->hasHeightForWidth() ? std::max(dialog->heightForWidth(hint.width()), dialog->minimumSizeHint().height())
                                                             : hint.height());
    const QPixmap top = dialog->grab();
    QPainter painter(&shot);
    painter.fillRect(window.rect(), QColor(0, 0, 0, 70));
    const QSize size = top.deviceIndependentSize().toSize();
    const QRect at(QPoint((window.width() - size.width()) / 2, 60), size);
    painter.drawPixmap(at, top);
    painter.setPen(QColor(0, 0, 0, 90));
    painter.drawRect(at.adjusted(0, 0, -1, -1));
    return shot;
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
          model(Demo::paths(dir), settings, stageServices(dir)), window(model, thumbnails, windowSettings) {
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
        QDialog* dialog = screen.dialog ? screen.dialog(stage->model, stage->window) : nullptr;
        if (dialog)
            dialog->show();
        settle(stage->thumbnails);
        const QString file = QDir(QString::fromStdString(out)).filePath(QString(screen.name) + ".png");
        const QPixmap shot = picture(stage->window, dialog);
        if (dialog) {
            dialog->hide();
            stage->model.setShowTidy(false);
            if (!qobject_cast<SettingsDialog*>(dialog) && !qobject_cast<TidySheet*>(dialog))
                delete dialog;
        }
        if (shot.save(file)) {
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
