#pragma once

// What the window tests share: a widgets application made before anything else, and a main
// window over a test world's model.

#include "app/AppTestSupport.h"
#include "app/ThumbnailProvider.h"
#include "ui/MainWindow.h"
#include "ui/ShotGrid.h"
#include "ui/ShotListModel.h"

#include <QApplication>
#include <QTest>

namespace lumivale::test {

inline void ensureWidgetsApp() {
    static int argc = 1;
    static char name[] = "lumivale-ui-test", *argv[] = {name, nullptr};
    if (!QApplication::instance())
        new QApplication(argc, argv);
}

// The main window over a world's model, shown offscreen.
struct Window {
    explicit Window(AppModel& model)
        : settings(QString::fromStdString(testRoot() + "/window.ini"), QSettings::IniFormat),
          window(model, thumbnails, settings) {
        window.resize(1440, 900);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    QListView* grid() const { return window.grid()->view(); }
    int gridRows() const { return window.grid()->listModel()->rowCount(); }
    // The shot names the grid shows, in order.
    std::vector<std::string> gridNames() const {
        std::vector<std::string> names;
        for (int r = 0; r < gridRows(); ++r)
            names.emplace_back(window.grid()->listModel()->shot(r)->name());
        return names;
    }

    QSettings settings;
    ThumbnailProvider thumbnails;
    MainWindow window;
};

} // namespace lumivale::test
