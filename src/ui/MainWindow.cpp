#include "ui/MainWindow.h"

#include "app/AppModel.h"
#include "ui/BannerBar.h"
#include "ui/Header.h"
#include "ui/Icons.h"
#include "ui/Inspector.h"
#include "ui/OverviewView.h"
#include "ui/SettingsDialog.h"
#include "ui/ShotActions.h"
#include "ui/ShotGrid.h"
#include "ui/Sidebar.h"
#include "ui/TidySheet.h"
#include "ui/VaultView.h"
#include "ui/WelcomeSheet.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace lumivale {
namespace {

QAction* action(QObject* parent, const char* name, const QString& text, const QKeySequence& keys = {}) {
    auto* a = new QAction(text, parent);
    a->setObjectName(name);
    a->setShortcut(keys);
    return a;
}

} // namespace

MainWindow::MainWindow(AppModel& model, ThumbnailProvider& thumbnails, QSettings& settings, QWidget* parent)
    : QMainWindow(parent), model_(model), settings_(settings) {
    setObjectName("mainWindow");
    setWindowTitle("Lumivale");
    setWindowIcon(Icons::app());

    QAction* tidy = action(this, "tidyAction", tr("Tidy"), QKeySequence(Qt::CTRL | Qt::Key_T));
    tidy->setIcon(Icons::symbol("tidy"));
    tidy->setToolTip(tr("File screenshots into folders, or clear out old ones (Ctrl+T)"));
    connect(tidy, &QAction::triggered, this, [this] { model_.setShowTidy(true); });

    grid_ = new ShotGrid(model_, thumbnails, this);
    actions_ = new ShotActions(model_, [this] { return grid_->selectedPaths(); }, this);
    grid_->attach(*actions_);
    sidebar_ = new Sidebar(model_, this);
    header_ = new Header(model_, tidy, this);
    banner_ = new BannerBar(model_, this);
    overview_ = new OverviewView(model_, thumbnails, this);
    inspector_ = new Inspector(model_, thumbnails, *actions_, this);
    connect(&model_, &AppModel::selectionChanged, actions_, &ShotActions::update);

    pages_ = new QStackedWidget(this);
    pages_->addWidget(overview_);
    pages_->addWidget(grid_);

    auto* main = new QWidget(this);
    auto* mainLayout = new QVBoxLayout(main);
    mainLayout->setContentsMargins(0, 0, 0, 0);
    mainLayout->setSpacing(0);
    mainLayout->addWidget(header_);
    auto* bannerHolder = new QWidget(main);
    auto* bannerLayout = new QVBoxLayout(bannerHolder);
    bannerLayout->setContentsMargins(12, 0, 12, 6);
    bannerLayout->addWidget(banner_);
    mainLayout->addWidget(bannerHolder);
    mainLayout->addWidget(pages_, 1);
    connect(&model_, &AppModel::bannerChanged, bannerHolder, [this, bannerHolder] { bannerHolder->setVisible(model_.banner().has_value()); });
    bannerHolder->setVisible(model_.banner().has_value());

    splitter_ = new QSplitter(this);
    splitter_->setObjectName("panes");
    splitter_->addWidget(sidebar_);
    splitter_->addWidget(main);
    splitter_->addWidget(inspector_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    splitter_->setStretchFactor(2, 0);
    splitter_->setChildrenCollapsible(false);
    splitter_->setSizes({220, 840, 360});
    setCentralWidget(splitter_);
    buildMenus(tidy);

    resize(1440, 900);
    restoreGeometry(settings_.value("window/geometry").toByteArray());
    splitter_->restoreState(settings_.value("window/panes").toByteArray());
    // Tab goes from the places to the search field, the grid and the inspector.
    setTabOrder(sidebar_, header_->search());
    setTabOrder(header_->search(), grid_->view());
    connect(&model_, &AppModel::placeChanged, this, &MainWindow::showPlace);
    vault_ = new VaultView(model_, this);
    setLockedPage(vault_);
    connect(&model_, &AppModel::sheetsChanged, this, &MainWindow::showSheets);
    showSheets();
}

MainWindow::~MainWindow() = default;

void MainWindow::setLockedPage(QWidget* page) {
    locked_ = page;
    pages_->addWidget(page);
    showPlace();
}

void MainWindow::buildMenus(QAction* tidy) {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* addFolder = action(this, "addFolderAction", tr("Add Folder…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    connect(addFolder, &QAction::triggered, this, [this] {
        const QString dir = QFileDialog::getExistingDirectory(this, tr("Add a Folder"), QDir::homePath());
        if (!dir.isEmpty())
            model_.addFolder(dir.toStdString());
    });
    QAction* rescan = action(this, "rescanAction", tr("Look for New Screenshots"), QKeySequence(Qt::CTRL | Qt::Key_R));
    connect(rescan, &QAction::triggered, &model_, &AppModel::rescan);
    QAction* settings = action(this, "settingsAction", tr("Settings…"), QKeySequence(Qt::CTRL | Qt::Key_Comma));
    settings->setIcon(Icons::symbol("settings", "preferences-system"));
    connect(settings, &QAction::triggered, this, &MainWindow::showSettings);
    QAction* quit = action(this, "quitAction", tr("Quit"), QKeySequence::Quit);
    connect(quit, &QAction::triggered, this, &QWidget::close);
    file->addActions({addFolder, rescan, tidy});
    file->addSeparator();
    file->addAction(settings);
    file->addSeparator();
    file->addAction(quit);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* undo = action(this, "undoAction", tr("Undo Last Tidy"), QKeySequence::Undo);
    const auto updateUndo = [this, undo] {
        undo->setEnabled(model_.canUndo());
        const auto last = model_.journals().lastUndoable();
        undo->setText(last ? tr("Undo: %1").arg(QString::fromStdString(last->summary())) : tr("Undo Last Tidy"));
    };
    connect(&model_, &AppModel::journalsChanged, this, updateUndo);
    updateUndo();
    connect(undo, &QAction::triggered, &model_, &AppModel::undoLast);
    QAction* find = action(this, "findAction", tr("Find"), QKeySequence::Find);
    connect(find, &QAction::triggered, this, [this] {
        header_->search()->setFocus(Qt::ShortcutFocusReason);
        header_->search()->selectAll();
    });
    QAction* selectAll = action(this, "selectAllAction", tr("Select All"), QKeySequence::SelectAll);
    selectAll->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(selectAll, &QAction::triggered, grid_->view(), &QListView::selectAll);
    grid_->view()->addAction(selectAll);
    edit->addActions({undo});
    edit->addSeparator();
    edit->addActions({find, selectAll});

    QMenu* shot = menuBar()->addMenu(tr("&Screenshot"));
    actions_->fill(*shot);
    connect(shot, &QMenu::aboutToShow, actions_, &ShotActions::update);

    QMenu* go = menuBar()->addMenu(tr("&Go"));
    const std::vector<std::pair<Place, const char*>> places = {
        {Place::of(Place::Kind::overview), "goOverview"}, {Place::of(Place::Kind::all), "goAll"},
        {Place::of(Place::Kind::recent), "goRecent"},     {Place::of(Place::Kind::privateOnes), "goPrivate"},
        {Place::of(Place::Kind::locked), "goLocked"},
    };
    int key = 0;
    for (const auto& entry : places) {
        const Place place = entry.first; // named, as clang 14 cannot capture a structured binding
        const char* name = entry.second;
        QAction* a = action(this, name, QString::fromStdString(place.title({})), QKeySequence(Qt::CTRL | (Qt::Key_1 + key++)));
        connect(a, &QAction::triggered, this, [this, place] { model_.setPlace(place); });
        go->addAction(a);
    }

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    QAction* about = action(this, "aboutAction", tr("About Lumivale"));
    connect(about, &QAction::triggered, this, [this] {
        QMessageBox::about(this, tr("About Lumivale"),
                           tr("<b>Lumivale</b> %1<br>Keeps your screenshots in order. It reads them on this computer; "
                              "nothing leaves it.").arg(QApplication::applicationVersion()));
    });
    help->addAction(about);
}

void MainWindow::showPlace() {
    switch (model_.place().kind) {
    case Place::Kind::overview: pages_->setCurrentWidget(overview_); break;
    case Place::Kind::locked: pages_->setCurrentWidget(locked_ ? locked_ : static_cast<QWidget*>(grid_)); break;
    default: pages_->setCurrentWidget(grid_); break;
    }
    // The overview and the locked area have no selected screenshot to inspect.
    const auto kind = model_.place().kind;
    inspector_->setVisible(kind != Place::Kind::locked && kind != Place::Kind::overview);
}

void MainWindow::showSheets() {
    // A sheet that the model no longer shows goes without a word back: closing it told the model.
    const auto follow = [this](auto& sheet, bool shown, auto make) {
        if (shown && !sheet) {
            sheet = make();
            sheet->setWindowModality(Qt::WindowModal);
            sheet->show();
        } else if (!shown && sheet) {
            sheet->hide();
            sheet->deleteLater();
            sheet = nullptr;
        }
    };
    follow(welcome_, model_.showWelcome(), [this] { return new WelcomeSheet(model_, this); });
    follow(tidy_, model_.showTidy(), [this] { return new TidySheet(model_, this); });
}

TidySheet* MainWindow::tidySheet() const { return tidy_; }

WelcomeSheet* MainWindow::welcomeSheet() const { return welcome_; }

SettingsDialog* MainWindow::showSettings() {
    if (!settingsDialog_)
        settingsDialog_ = new SettingsDialog(model_, this);
    settingsDialog_->show();
    settingsDialog_->raise();
    settingsDialog_->activateWindow();
    return settingsDialog_;
}

void MainWindow::remember() {
    settings_.setValue("window/geometry", saveGeometry());
    settings_.setValue("window/panes", splitter_->saveState());
}

void MainWindow::closeEvent(QCloseEvent* event) {
    remember();
    QMainWindow::closeEvent(event);
}

} // namespace lumivale
