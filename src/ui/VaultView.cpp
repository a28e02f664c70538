#include "ui/VaultView.h"

#include "app/AppModel.h"
#include "ui/Icons.h"
#include "ui/LockedCell.h"
#include "ui/LockedInspector.h"
#include "ui/LockedListModel.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace lumivale {
namespace {

QString count(int64_t n) {
    return QLocale().toString(static_cast<qlonglong>(n));
}

QLabel* centred(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

VaultView::VaultView(AppModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    setObjectName("vaultView");
    setAccessibleName(tr("Locked"));
    stack_ = new QStackedLayout(this);
    stack_->addWidget(closed_ = closedPanel());
    stack_->addWidget(open_ = openView());
    for (auto signal :
         {&AppModel::vaultChanged, &AppModel::libraryChanged, &AppModel::settingsChanged})
        connect(&model_, signal, this, &VaultView::refresh);
    // Clicks, keys and scrolling anywhere in the open view count as working in it.
    qApp->installEventFilter(this);
    refresh();
}

QWidget* VaultView::closedPanel() {
    auto* panel = new QWidget(this);
    panel->setObjectName("vaultClosed");
    // One column of a readable width in the middle of the place.
    auto* column = new QWidget(panel);
    column->setFixedWidth(480);
    auto* layout = new QVBoxLayout(column);
    layout->setSpacing(14);
    auto* lock = centred(column);
    lock->setPixmap(Icons::symbol("locked").pixmap(64, 64));
    lock->setAccessibleName(tr("Locked"));
    layout->addWidget(lock);
    headline_ = centred(column);
    headline_->setObjectName("vaultHeadline");
    QFont big = headline_->font();
    big.setPointSizeF(big.pointSizeF() * 1.5);
    big.setWeight(QFont::Bold);
    headline_->setFont(big);
    layout->addWidget(headline_);
    explanation_ = centred(column);
    explanation_->setObjectName("vaultExplanation");
    layout->addWidget(explanation_);
    auto* unlock = new QPushButton(Icons::symbol("fingerprint"), tr("Unlock"), column);
    unlock->setObjectName("unlockButton");
    unlock->setIconSize(QSize(20, 20));
    unlock->setMinimumWidth(160);
    unlock->setDefault(true);
    connect(unlock, &QPushButton::clicked, &model_, &AppModel::unlockVault);
    layout->addWidget(unlock, 0, Qt::AlignHCenter);
    review_ = new QPushButton(column);
    review_->setObjectName("reviewPrivateButton");
    review_->setFlat(true);
    review_->setCursor(Qt::PointingHandCursor);
    review_->setStyleSheet("QPushButton { color: palette(link); }");
    connect(review_, &QPushButton::clicked, this,
            [this] { model_.setPlace(Place::of(Place::Kind::privateOnes)); });
    layout->addWidget(review_, 0, Qt::AlignHCenter);
    auto* outer = new QGridLayout(panel);
    outer->addWidget(column, 1, 1);
    outer->setRowStretch(0, 2);
    outer->setRowStretch(2, 3);
    outer->setColumnStretch(0, 1);
    outer->setColumnStretch(2, 1);
    return panel;
}

QWidget* VaultView::openView() {
    auto* view = new QWidget(this);
    view->setObjectName("vaultOpen");
    auto* header = new QHBoxLayout;
    header->setContentsMargins(16, 8, 16, 8);
    auto* openMark = new QLabel(view);
    openMark->setPixmap(Icons::symbol("unlocked").pixmap(20, 20));
    auto* openLabel = new QLabel(tr("Open"), view);
    QFont bold = openLabel->font();
    bold.setWeight(QFont::Bold);
    openLabel->setFont(bold);
    lockLine_ = new QLabel(view);
    lockLine_->setObjectName("vaultLockLine");
    lockLine_->setEnabled(false);
    lockLine_->setWordWrap(true);
    auto* lockNow = new QPushButton(Icons::symbol("locked"), tr("Lock Now"), view);
    lockNow->setObjectName("lockNowButton");
    connect(lockNow, &QPushButton::clicked, &model_, &AppModel::lockVault);
    header->addWidget(openMark);
    header->addWidget(openLabel);
    header->addSpacing(8);
    header->addWidget(lockLine_, 1);
    header->addWidget(lockNow);

    items_ = new LockedListModel(model_, this);
    cell_ = new LockedCell(model_, this);
    grid_ = new QListView(view);
    grid_->setObjectName("lockedGrid");
    grid_->setAccessibleName(tr("Locked screenshots"));
    grid_->setViewMode(QListView::ListMode);
    grid_->setFlow(QListView::LeftToRight);
    grid_->setWrapping(true);
    grid_->setResizeMode(QListView::Adjust);
    grid_->setUniformItemSizes(true);
    grid_->setMovement(QListView::Static);
    grid_->setFrameShape(QFrame::NoFrame);
    grid_->setModel(items_);
    grid_->setItemDelegate(cell_);
    grid_->setGridSize(LockedCell::cellSize() + QSize(4, 4));
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                const auto id =
                    current.isValid()
                        ? std::optional(
                              current.data(LockedListModel::IdRole).toString().toStdString())
                        : std::nullopt;
                if (id != model_.lockedSelection()) model_.setLockedSelection(id);
            });
    connect(items_, &QAbstractItemModel::modelReset, this, &VaultView::followSelection);
    inspector_ = new LockedInspector(model_, view);

    auto* body = new QHBoxLayout;
    body->setContentsMargins(0, 0, 0, 0);
    body->addWidget(grid_, 1);
    body->addWidget(inspector_);
    auto* layout = new QVBoxLayout(view);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addLayout(body, 1);
    return view;
}

void VaultView::refresh() {
    const bool open = model_.vaultOpen();
    stack_->setCurrentWidget(open ? open_ : closed_);
    const int64_t n = model_.vaultCount();
    if (n > 0) {
        headline_->setText(n == 1 ? tr("1 screenshot locked")
                                  : tr("%1 screenshots locked").arg(count(n)));
        explanation_->setText(
            tr("Encrypted on this computer. Their words are locked too, so they don't show up in "
               "search until you open this."));
    } else {
        headline_->setText(tr("Nothing locked yet"));
        explanation_->setText(tr(
            "Lock away screenshots of IDs, cards and documents. Lumivale encrypts them on this "
            "computer, with a key kept in your keyring, and opens them only with your fingerprint "
            "or your account password."));
    }
    const int64_t privateOnes = model_.tally().sensitive;
    review_->setVisible(privateOnes > 0);
    review_->setText(privateOnes == 1
                         ? tr("Review 1 private screenshot")
                         : tr("Review %1 private screenshots").arg(count(privateOnes)));
    lockLine_->setText(tr("Locks itself when you leave Lumivale for a minute, or after %1 minutes.")
                           .arg(model_.lockAfterMinutes()));
    followSelection();
}

void VaultView::followSelection() {
    const auto& id = model_.lockedSelection();
    const int row = id ? items_->rowOf(*id) : -1;
    const QModelIndex current = grid_->currentIndex();
    if (row < 0) {
        if (current.isValid()) grid_->selectionModel()->clear();
        return;
    }
    if (current.row() != row)
        grid_->selectionModel()->setCurrentIndex(items_->index(row),
                                                 QItemSelectionModel::ClearAndSelect);
}

bool VaultView::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
    case QEvent::Wheel:
        if (auto* widget = qobject_cast<QWidget*>(watched);
            widget && model_.vaultOpen() && open_->isVisible() &&
            (widget == open_ || open_->isAncestorOf(widget)))
            model_.touchVault();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace lumivale
