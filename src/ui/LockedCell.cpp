#include "ui/LockedCell.h"

#include "app/AppModel.h"
#include "ui/Brand.h"
#include "ui/Icons.h"
#include "ui/LockedListModel.h"

#include <QDateTime>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>

namespace lumivale {
namespace {

constexpr int pictureWidth = 184, pictureHeight = 132, padding = 8;

} // namespace

LockedCell::LockedCell(AppModel& model, QObject* parent)
    : QStyledItemDelegate(parent), model_(model), lock_(Icons::tinted("locked", Qt::white)) {
    connect(&model_, &AppModel::vaultChanged, this, [this] {
        if (!model_.vaultOpen()) pictures_.clear();
    });
}

QSize LockedCell::cellSize() {
    return {pictureWidth + 2 * padding, pictureHeight + 2 * padding + 28};
}

QSize LockedCell::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return cellSize();
}

QString LockedCell::lockedText(const LockedShot& item) {
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(item.lockedAt.time_since_epoch())
            .count();
    return tr("Locked %1")
        .arg(QLocale().toString(QDateTime::fromMSecsSinceEpoch(ms), QLocale::ShortFormat));
}

QPixmap LockedCell::picture(const QString& id, const QSize& size, qreal ratio) const {
    if (const auto found = pictures_.find(id); found != pictures_.end()) return *found;
    const std::optional<QImage> image = model_.lockedImage(id.toStdString());
    if (!image) return {};
    // Filled and cropped to the cell, like the grid's thumbnails.
    QImage scaled =
        image->scaled(size * ratio, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    scaled = scaled.copy((scaled.width() - qRound(size.width() * ratio)) / 2, 0,
                         qRound(size.width() * ratio), qRound(size.height() * ratio));
    QPixmap pixmap = QPixmap::fromImage(scaled);
    pixmap.setDevicePixelRatio(ratio);
    pictures_.insert(id, pixmap);
    return pixmap;
}

void LockedCell::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    const auto* list = qobject_cast<const LockedListModel*>(index.model());
    const LockedShot* item = list ? list->item(index.row()) : nullptr;
    if (!item) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QPalette& palette = option.palette;
    const QRect cell = option.rect.adjusted(2, 2, -2, -2);
    const bool selected = option.state & QStyle::State_Selected;
    if (selected || (option.state & QStyle::State_HasFocus)) {
        QColor fill = palette.color(QPalette::Highlight);
        fill.setAlphaF(selected ? 0.22 : 0.08);
        painter->setPen(selected ? QPen(palette.color(QPalette::Highlight), 2) : Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(cell, 8, 8);
    }

    const QRect area(cell.left() + padding - 2, cell.top() + padding - 2, pictureWidth,
                     pictureHeight);
    QPainterPath clip;
    clip.addRoundedRect(area, 6, 6);
    painter->setClipPath(clip);
    painter->fillRect(area, palette.color(QPalette::AlternateBase));
    const QPixmap pixmap = picture(index.data(LockedListModel::IdRole).toString(), area.size(),
                                   painter->device()->devicePixelRatioF());
    if (!pixmap.isNull()) painter->drawPixmap(area.topLeft(), pixmap);
    painter->setClipping(false);

    // The overlay: a lock in a round mark at the top right.
    const QRect badge(area.right() - 30, area.top() + 6, 24, 24);
    painter->setPen(Qt::NoPen);
    painter->setBrush(Brand::accent());
    painter->drawEllipse(badge);
    lock_.paint(painter, badge.adjusted(5, 5, -5, -5));

    painter->setPen(palette.color(selected ? QPalette::Text : QPalette::PlaceholderText));
    const QRect text(area.left(), area.bottom() + 6, area.width(), option.fontMetrics.height() + 4);
    painter->drawText(
        text, Qt::AlignLeft | Qt::AlignVCenter,
        option.fontMetrics.elidedText(lockedText(*item), Qt::ElideRight, text.width()));
    painter->restore();
}

} // namespace lumivale
