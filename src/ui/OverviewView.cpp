#include "ui/OverviewView.h"

#include "app/AppModel.h"
#include "app/ThumbnailProvider.h"
#include "core/ScreenshotFolder.h"
#include "ui/Brand.h"
#include "ui/Icons.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace lumivale {
namespace {

constexpr int thumbsPerCard = 4;

QString qs(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

QString screenshots(int64_t n) {
    return n == 1 ? QObject::tr("1 screenshot") : QObject::tr("%1 screenshots").arg(QLocale().toString(static_cast<qlonglong>(n)));
}

QLabel* bigLabel(const QString& text, double scale, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setWeight(QFont::Bold);
    label->setFont(font);
    label->setWordWrap(true);
    return label;
}

} // namespace

ShelfCard::ShelfCard(AppModel& model, ThumbnailProvider& thumbnails, Shelf shelf, QWidget* parent)
    : QAbstractButton(parent), model_(model), thumbnails_(thumbnails), shelf_(shelf) {
    setObjectName("shelfCard-" + qs(shelfId(shelf)));
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { model_.setPlace(Place::ofShelf(shelf_)); });
    setText(qs(shelfTitle(shelf_)));
}

QSize ShelfCard::sizeHint() const { return {300, 168}; }

void ShelfCard::refresh(const Tally& tally) {
    count_ = tally.count(shelf_);
    newest_ = model_.newest(shelf_, thumbsPerCard);
    setAccessibleName(tr("%1, %2").arg(text(), screenshots(count_)));
    update();
}

void ShelfCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& pal = palette();
    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setPen(QPen(hasFocus() ? pal.color(QPalette::Highlight) : pal.color(QPalette::Midlight), hasFocus() ? 2 : 1));
    QColor fill = pal.color(QPalette::Base);
    if (underMouse())
        fill = Brand::isDark() ? fill.lighter(125) : fill.darker(104);
    painter.setBrush(fill);
    painter.drawRoundedRect(r, 10, 10);

    Icons::tinted(QString("shelf-") + qs(shelfId(shelf_)), Brand::accent()).paint(&painter, QRect(16, 14, 22, 22));
    QFont title = font();
    title.setWeight(QFont::DemiBold);
    painter.setFont(title);
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(QRect(46, 12, width() - 120, 26), Qt::AlignLeft | Qt::AlignVCenter, text());
    painter.setFont(font());
    painter.setPen(pal.color(QPalette::PlaceholderText));
    painter.drawText(QRect(width() - 110, 12, 94, 26), Qt::AlignRight | Qt::AlignVCenter, QLocale().toString(static_cast<qlonglong>(count_)));

    const auto& newest = newest_;
    const int gap = 8;
    const int w = (width() - 32 - gap * (thumbsPerCard - 1)) / thumbsPerCard;
    const QRect strip(16, 48, width() - 32, height() - 64);
    if (newest.empty()) {
        painter.drawText(strip, Qt::AlignCenter, tr("Nothing here yet"));
        return;
    }
    for (size_t i = 0; i < newest.size(); ++i) {
        const Shot& shot = *newest[i];
        const QRectF cell(strip.left() + static_cast<int>(i) * (w + gap), strip.top(), w, strip.height());
        QPainterPath clip;
        clip.addRoundedRect(cell, 6, 6);
        painter.save();
        painter.setClipPath(clip);
        painter.fillRect(cell, pal.color(QPalette::AlternateBase));
        const QImage image = thumbnails_.thumbnail(shot, model_.isHidden(shot));
        if (!image.isNull()) {
            // Filled from the top, as a phone's or a window's top holds what tells it apart.
            QSizeF size = image.deviceIndependentSize();
            size.scale(cell.size(), Qt::KeepAspectRatioByExpanding);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(QRectF(cell.center().x() - size.width() / 2, cell.top(), size.width(), size.height()), image);
        }
        painter.restore();
        painter.setPen(QPen(pal.color(QPalette::Mid), 0.8));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(clip);
    }
}

OverviewView::OverviewView(AppModel& model, ThumbnailProvider& thumbnails, QWidget* parent)
    : QScrollArea(parent), model_(model) {
    setObjectName("overview");
    setAccessibleName(tr("Overview"));
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    pages_ = new QStackedWidget(this);

    cardsPage_ = new QWidget(pages_);
    auto* cardsLayout = new QVBoxLayout(cardsPage_);
    cardsLayout->setContentsMargins(20, 12, 20, 20);
    summary_ = new QLabel(cardsPage_);
    summary_->setObjectName("overviewSummary");
    cardsLayout->addWidget(summary_);
    auto* privateRow = new QHBoxLayout;
    privateLine_ = new QLabel(cardsPage_);
    privateLine_->setObjectName("privateLine");
    privateLine_->setWordWrap(true);
    reviewPrivate_ = new QPushButton(Icons::tinted("private", Brand::marker()), tr("Review Private Screenshots"), cardsPage_);
    reviewPrivate_->setObjectName("reviewPrivate");
    connect(reviewPrivate_, &QPushButton::clicked, this, [this] { model_.setPlace(Place::of(Place::Kind::privateOnes)); });
    privateRow->addWidget(privateLine_, 1);
    privateRow->addWidget(reviewPrivate_);
    cardsLayout->addLayout(privateRow);
    auto* grid = new QGridLayout;
    grid->setSpacing(14);
    for (size_t i = 0; i < allShelves.size(); ++i) {
        auto* card = new ShelfCard(model_, thumbnails, allShelves[i], cardsPage_);
        cards_.push_back(card);
        grid->addWidget(card, static_cast<int>(i / 2), static_cast<int>(i % 2));
    }
    cardsLayout->addLayout(grid);
    cardsLayout->addStretch();

    emptyPage_ = new QWidget(pages_);
    auto* emptyLayout = new QVBoxLayout(emptyPage_);
    emptyLayout->setContentsMargins(60, 60, 60, 60);
    emptyLayout->addStretch();
    auto* icon = new QLabel(emptyPage_);
    icon->setPixmap(Icons::app().pixmap(96, 96));
    icon->setAlignment(Qt::AlignCenter);
    emptyLayout->addWidget(icon);
    auto* headline = bigLabel(tr("No screenshots yet"), 1.6, emptyPage_);
    headline->setAlignment(Qt::AlignCenter);
    emptyLayout->addWidget(headline);
    looksAt_ = new QLabel(emptyPage_);
    looksAt_->setObjectName("looksAt");
    looksAt_->setWordWrap(true);
    looksAt_->setAlignment(Qt::AlignCenter);
    emptyLayout->addWidget(looksAt_);
    auto* addFolder = new QPushButton(Icons::symbol("add", "list-add"), tr("Add a Folder…"), emptyPage_);
    addFolder->setObjectName("addFolderButton");
    connect(addFolder, &QPushButton::clicked, this, [this] {
        const QString dir = QFileDialog::getExistingDirectory(this, tr("Add a Folder"), QDir::homePath());
        if (!dir.isEmpty())
            model_.addFolder(dir.toStdString());
    });
    emptyLayout->addWidget(addFolder, 0, Qt::AlignCenter);
    emptyLayout->addStretch();

    pages_->addWidget(cardsPage_);
    pages_->addWidget(emptyPage_);
    setWidget(pages_);

    later_.setSingleShot(true);
    later_.setInterval(250);
    connect(&later_, &QTimer::timeout, this, &OverviewView::refresh);
    connect(&model_, &AppModel::libraryChanged, &later_, qOverload<>(&QTimer::start));
    for (auto signal : {&AppModel::sourcesChanged, &AppModel::settingsChanged, &AppModel::revealedChanged,
                        &AppModel::scanningChanged, &AppModel::loadingChanged})
        connect(&model_, signal, this, &OverviewView::refresh);
    connect(&thumbnails, &ThumbnailProvider::ready, this, [this] {
        for (ShelfCard* card : cards_)
            card->update();
    });
    refresh();
}

void OverviewView::refresh() {
    later_.stop();
    const Tally tally = model_.tally();
    if (model_.loading()) {
        pages_->setCurrentWidget(cardsPage_);
        summary_->setText(tr("Opening your library…"));
        privateLine_->hide();
        reviewPrivate_->hide();
        return;
    }
    if (tally.total == 0) {
        const std::string home = QDir::homePath().toStdString();
        QStringList folders;
        for (const Source& source : model_.sources())
            if (source.enabled)
                folders << "<b>" + QString::fromStdString(ScreenshotFolder::displayName(source.path, home)).toHtmlEscaped() + "</b>";
        looksAt_->setText(tr("Lumivale looks for screenshots in %1. Take a screenshot, or add a folder of pictures, "
                             "and it reads the words in each one, here on this computer.")
                              .arg(folders.join(tr(" and "))));
        pages_->setCurrentWidget(emptyPage_);
        return;
    }
    pages_->setCurrentWidget(cardsPage_);
    QString summary = screenshots(tally.total);
    if (tally.unread > 0)
        summary += tr(", %1 still to read").arg(QLocale().toString(static_cast<qlonglong>(tally.unread)));
    summary_->setText(summary);
    const bool anyPrivate = tally.sensitive > 0;
    privateLine_->setVisible(anyPrivate);
    reviewPrivate_->setVisible(anyPrivate);
    const QString count = tally.sensitive == 1 ? tr("1 screenshot holds")
                                               : tr("%1 screenshots hold").arg(QLocale().toString(static_cast<qlonglong>(tally.sensitive)));
    privateLine_->setText(model_.blurPrivate() ? tr("%1 an ID, a card or an account number, and stay blurred.").arg(count)
                                               : tr("%1 an ID, a card or an account number.").arg(count));
    for (ShelfCard* card : cards_)
        card->refresh(tally);
}

} // namespace lumivale
