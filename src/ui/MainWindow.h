#pragma once

#include <QMainWindow>
#include <QPointer>

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
class SettingsDialog;
class Sidebar;
class ThumbnailProvider;
class TidySheet;
class VaultView;
class WelcomeSheet;

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
    VaultView* vaultView() const { return vault_; }
    // The sheets while they are shown, else null.
    TidySheet* tidySheet() const;
    WelcomeSheet* welcomeSheet() const;
    // Shows the settings, made on first use.
    SettingsDialog* showSettings();

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
    VaultView* vault_;
    QPointer<TidySheet> tidy_;
    QPointer<WelcomeSheet> welcome_;
    QPointer<SettingsDialog> settingsDialog_;
    Inspector* inspector_;
    QStackedWidget* pages_;
    QSplitter* splitter_;

    void buildMenus(QAction* tidy);
    void showPlace();
    // Opens or closes the welcome and tidy sheets as the model says.
    void showSheets();
    void remember();
};

} // namespace lumivale
