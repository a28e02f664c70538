#pragma once

#include <QMainWindow>

class QSettings;
class QSplitter;
class QStackedWidget;

namespace lumivale {

class AppModel;
class BannerBar;
class Header;
class Inspector;
class OverviewView;
class ShotActions;
class ShotGrid;
class Sidebar;
class ThumbnailProvider;

// The main window: it arranges the sidebar, header, banner, the place's view and the inspector,
// and holds the menus; every view reads the model and calls its actions.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    // `settings` keeps the window's size, position and pane sizes.
    MainWindow(AppModel& model, ThumbnailProvider& thumbnails, QSettings& settings, QWidget* parent = nullptr);
    ~MainWindow() override;

    ShotGrid* grid() const { return grid_; }
    Header* header() const { return header_; }
    Sidebar* sidebar() const { return sidebar_; }
    Inspector* inspector() const { return inspector_; }
    // Adds a page for the Locked place.
    void setLockedPage(QWidget* page);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    AppModel& model_;
    QSettings& settings_;
    ShotActions* actions_;
    Sidebar* sidebar_;
    Header* header_;
    BannerBar* banner_;
    OverviewView* overview_;
    ShotGrid* grid_;
    QWidget* locked_ = nullptr;
    Inspector* inspector_;
    QStackedWidget* pages_;
    QSplitter* splitter_;

    void buildMenus(QAction* tidy);
    void showPlace();
    void remember();
};

} // namespace lumivale
