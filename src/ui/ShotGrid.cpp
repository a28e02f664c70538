#include "ui/ShotGrid.h"

#include "app/AppModel.h"
#include "app/ThumbnailProvider.h"
#include "ui/Desktop.h"
#include "ui/ShotActions.h"
#include "ui/ShotDelegate.h"
#include "ui/ShotListModel.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QScrollBar>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumivale {
namespace {

// A list view that opens the current shot with Enter, as a file manager does.
class GridView : public QListView {
public:
    using QListView::QListView;
    std::function<void()> onOpen;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && onOpen) {
            onOpen();
            return;
        }
        QListView::keyPressEvent(event);
    }
};

} // namespace

ShotGrid::ShotGrid(AppModel& model, ThumbnailProvider& thumbnails, QWidget* parent)
    : QWidget(parent), model_(model), thumbnails_(thumbnails) {
    list_ = new ShotListModel(model_, this);
    delegate_ = new ShotDelegate(model_, thumbnails_, this);

    auto* view = new GridView(this);
    view_ = view;
    view_->setObjectName("shotGrid");
    view_->setAccessibleName(tr("Screenshots"));
    view_->setViewMode(QListView::ListMode);
    view_->setFlow(QListView::LeftToRight);
    view_->setWrapping(true);
    view_->setResizeMode(QListView::Adjust);
    view_->setUniformItemSizes(true);
    view_->setMovement(QListView::Static);
    view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view_->setSelectionRectVisible(true);
    view_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->verticalScrollBar()->setSingleStep(40);
    view_->setSpacing(2);
    view_->setMouseTracking(true);
    view_->setFrameShape(QFrame::NoFrame);
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    view_->setModel(list_);
    view_->setItemDelegate(delegate_);
    view_->setGridSize(delegate_->cellSize());

    matchBar_ = new QWidget(this);
    matchCount_ = new QLabel(matchBar_);
    bestFirst_ = new QToolButton(matchBar_);
    newestFirst_ = new QToolButton(matchBar_);
    bestFirst_->setText(tr("Best First"));
    newestFirst_->setText(tr("Newest First"));
    bestFirst_->setObjectName("bestFirst");
    newestFirst_->setObjectName("newestFirst");
    auto* order = new QButtonGroup(matchBar_);
    for (QToolButton* b : {bestFirst_, newestFirst_}) {
        b->setCheckable(true);
        b->setAutoRaise(true);
        order->addButton(b);
    }
    connect(newestFirst_, &QToolButton::toggled, this, [this](bool on) { model_.setNewestFirst(on); });
    auto* bar = new QHBoxLayout(matchBar_);
    bar->setContentsMargins(12, 4, 12, 0);
    bar->addWidget(matchCount_);
    bar->addStretch();
    bar->addWidget(bestFirst_);
    bar->addWidget(newestFirst_);

    empty_ = new QLabel(this);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    empty_->setEnabled(false);

    auto* pages = new QWidget(this);
    stack_ = new QStackedLayout(pages);
    stack_->addWidget(view_);
    stack_->addWidget(empty_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(matchBar_);
    layout->addWidget(pages);
    setFocusProxy(view_);

    view->onOpen = [this] {
        if (const Shot* s = model_.selected())
            Desktop::openFile(s->path);
    };
    connect(view_, &QListView::doubleClicked, this, [this](const QModelIndex& index) {
        Desktop::openFile(index.data(ShotListModel::PathRole).toString().toStdString());
    });
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (current.isValid())
            model_.setSelection(current.data(ShotListModel::PathRole).toString().toStdString());
    });
    connect(&model_, &AppModel::selectionChanged, this, &ShotGrid::followModelSelection);
    connect(list_, &QAbstractItemModel::layoutChanged, this, [this] {
        updateBars();
        askForThumbnails();
    });
    connect(list_, &QAbstractItemModel::modelReset, this, &ShotGrid::updateBars);
    connect(&model_, &AppModel::queryChanged, this, [this] {
        view_->setGridSize(delegate_->cellSize());
        updateBars();
    });

    wanted_.setSingleShot(true);
    wanted_.setInterval(16);
    connect(&wanted_, &QTimer::timeout, this, &ShotGrid::askForThumbnails);
    connect(view_->verticalScrollBar(), &QScrollBar::valueChanged, &wanted_, qOverload<>(&QTimer::start));
    connect(&thumbnails_, &ThumbnailProvider::ready, view_->viewport(), qOverload<>(&QWidget::update));
    updateBars();
}

void ShotGrid::attach(ShotActions& actions) {
    view_->addActions(actions.all());
    connect(view_, &QListView::customContextMenuRequested, this, [this, &actions](const QPoint& at) {
        if (!view_->indexAt(at).isValid())
            return;
        actions.update();
        QMenu menu(this);
        actions.fill(menu);
        menu.exec(view_->viewport()->mapToGlobal(at));
    });
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, &actions, &ShotActions::update);
}

std::vector<std::string> ShotGrid::selectedPaths() const {
    QModelIndexList rows = view_->selectionModel()->selectedIndexes();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    std::vector<std::string> paths;
    for (const QModelIndex& index : rows)
        paths.push_back(index.data(ShotListModel::PathRole).toString().toStdString());
    if (paths.empty() && model_.selected())
        paths.push_back(model_.selected()->path);
    return paths;
}

void ShotGrid::followModelSelection() {
    const auto& path = model_.selection();
    const QModelIndex current = view_->currentIndex();
    if (path && current.isValid() && current.data(ShotListModel::PathRole).toString().toStdString() == *path)
        return;
    const int row = path ? list_->rowOf(*path) : -1;
    if (row < 0) {
        view_->selectionModel()->clear();
        return;
    }
    const QModelIndex index = list_->index(row);
    view_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    view_->scrollTo(index);
}

void ShotGrid::updateBars() {
    const int n = list_->rowCount();
    const bool searching = !model_.query().empty();
    matchBar_->setVisible(searching);
    matchCount_->setText(n == 1 ? tr("1 match") : tr("%1 matches").arg(QLocale().toString(n)));
    (model_.newestFirst() ? newestFirst_ : bestFirst_)->setChecked(true);
    if (n > 0) {
        stack_->setCurrentWidget(view_);
        return;
    }
    empty_->setText(searching ? tr("No screenshot holds “%1”.").arg(QString::fromStdString(model_.query()))
                              : tr("No screenshots here yet."));
    stack_->setCurrentWidget(empty_);
}

void ShotGrid::askForThumbnails() {
    const int n = list_->rowCount();
    if (n == 0)
        return;
    // The rows on screen: from the cell at the top left to the cell at the bottom right.
    const QRect area = view_->viewport()->rect();
    QModelIndex top = view_->indexAt(QPoint(view_->spacing() + 4, view_->spacing() + 4));
    const int first = top.isValid() ? top.row() : 0;
    const QSize cell = view_->gridSize();
    const int perRow = std::max(1, area.width() / std::max(1, cell.width()));
    const int rows = area.height() / std::max(1, cell.height()) + 2;
    const int last = std::min(n - 1, first + perRow * rows);
    const int nearBy = perRow * rows; // a screen above and a screen below
    std::vector<std::string> onScreen, near;
    for (int r = first; r <= last; ++r)
        onScreen.push_back(list_->shot(r)->path);
    // Asking for the shots near the screen queues them behind what is on it.
    const auto ask = [&](int r) {
        const Shot& shot = *list_->shot(r);
        thumbnails_.thumbnail(shot, model_.isHidden(shot));
        near.push_back(shot.path);
    };
    for (int r = std::max(0, first - nearBy); r < first; ++r)
        ask(r);
    for (int r = last + 1; r <= std::min(n - 1, last + nearBy); ++r)
        ask(r);
    thumbnails_.prioritise(onScreen, near);
}

} // namespace lumivale
