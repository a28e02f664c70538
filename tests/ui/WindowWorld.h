#pragma once

// What the window tests share: a widgets application, the model world of the application-model
// tests with a main window over it, and hands that work the window's controls.

#include "WindowTestSupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QTest>
#include <QTimer>
#include <sys/time.h>

namespace lumivale::test {

struct WidgetsApp {
    WidgetsApp() {
        ensureWidgetsApp();
        // The offscreen platform says what it cannot do (raise a window, size hints) every time.
        static const QtMessageHandler standard = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& context, const QString& message) {
                if (!message.startsWith("This plugin does not support"))
                    standard(type, context, message);
            });
    }
};

// The model world with the main window over the model it made.
struct WindowWorld : WidgetsApp, World {
    MainWindow& window() {
        if (!window_) {
            window_ = std::make_unique<MainWindow>(*model, thumbnails, windowSettings);
            window_->show();
        }
        return *window_;
    }

    // A read record of a picture drawn at `path`, dated `daysAgo` before the world's clock.
    Shot drawn(const std::string& path, Shelf shelf, double daysAgo) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        drawPicture(path, {std::filesystem::path(path).stem().string()});
        const auto when =
            std::chrono::system_clock::to_time_t(clock) - static_cast<time_t>(daysAgo * 86400);
        const timeval times[2] = {{when, 0}, {when, 0}};
        ::utimes(path.c_str(), times);
        return readShotOf(path, shelf, clock);
    }

    // A loaded model whose library holds these records.
    AppModel& holding(const std::vector<Shot>& shots) {
        Library library;
        for (const Shot& shot : shots)
            library.put(shot);
        EXPECT_TRUE(library.save(tmp.file("data/library.plist")));
        return loaded();
    }

    ThumbnailProvider thumbnails;
    QSettings windowSettings{QString::fromStdString(tmp.file("window.ini")), QSettings::IniFormat};
    std::unique_ptr<MainWindow> window_;
};

// The child of `root` with this object name; fails the test when there is none.
template <class T> T* child(const QObject* root, const char* name) {
    T* found = root ? root->findChild<T*>(name) : nullptr;
    EXPECT_TRUE(found) << "no " << name;
    return found;
}

// Clicks the button of `root` with this object name, as a person would: near its left end,
// where a check box or radio button has its mark.
inline void click(const QObject* root, const char* name) {
    if (auto* button = child<QAbstractButton>(root, name))
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
}

// The next folder chooser that opens gets `folder` typed in and accepted.
inline void nextFolderChosen(const std::string& folder) {
    QTimer::singleShot(0, [folder] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog) << "no folder chooser opened";
        dialog->selectFile(QString::fromStdString(folder));
        static_cast<QDialog*>(dialog)->accept();
        if (dialog->isVisible()) {
            ADD_FAILURE() << "the folder chooser refused " << folder;
            dialog->reject();
        }
    });
}

} // namespace lumivale::test
