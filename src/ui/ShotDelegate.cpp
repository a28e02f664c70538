#include "ui/ShotDelegate.h"

#include "app/AppModel.h"
#include "app/ThumbnailProvider.h"
#include "ui/Brand.h"
#include "ui/Icons.h"
#include "ui/ShotLabels.h"
#include "ui/ShotListModel.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>

namespace lumivale {
namespace {

constexpr int cellWidth = 196;
constexpr int pictureHeight = 138;
constexpr int pad = 8;

} // namespace

ShotDelegate::ShotDelegate(AppModel& model, ThumbnailProvider& thumbnails, QObject* parent)
    : QStyledItemDelegate(parent), model_(model), thumbnails_(thumbnails) {
    // Room for a few screens of finished cells at a device pixel ratio of 2.
    QPixmapCache::setCacheLimit(std::max(QPixmapCache::cacheLimit(), 48 * 1024));
}

QSize ShotDelegate::cellSize() const {
    const int line = QFontMetrics(QApplication::font()).height();
    const int lines = model_.query().empty() ? 2 : 3;
    return {cellWidth, pad + pictureHeight + pad + lines * line + pad};
}

QSize ShotDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const { return cellSize(); }

void ShotDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto* shot = static_cast<const Shot*>(index.data(ShotListModel::ShotRole).value<const void*>());
    if (!shot)
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QPalette& palette = option.palette;
    const QRect cell = option.rect.adjusted(3, 3, -3, -3);
    const bool selected = option.state & QStyle::State_Selected;
    if (selected || (option.state & QStyle::State_MouseOver)) {
        QColor fill = palette.color(QPalette::Highlight);
        fill.setAlphaF(selected ? 0.28 : 0.10);
        painter->setPen(selected ? QPen(palette.color(QPalette::Highlight), 1.5) : Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(cell, 8, 8);
    }
    if (option.state & QStyle::State_HasFocus && option.state & QStyle::State_Selected) {
        painter->setPen(QPen(palette.color(QPalette::Highlight), 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(cell.adjusted(1, 1, -1, -1), 8, 8);
    }

    const bool hidden = model_.isHidden(*shot);
    const QRect picture(cell.left() + pad, cell.top() + pad, cell.width() - 2 * pad, pictureHeight);
    paintThumbnail(painter, picture, *shot, hidden);

    const QFontMetrics metrics(option.font);
    QRect text(picture.left(), picture.bottom() + pad, picture.width(), metrics.height());
    QFont bold = option.font;
    bold.setWeight(QFont::DemiBold);
    painter->setFont(bold);
    painter->setPen(palette.color(QPalette::Text));
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                      QFontMetrics(bold).elidedText(index.data().toString(), Qt::ElideMiddle, text.width()));
    painter->setFont(option.font);
    text.translate(0, metrics.height());
    painter->setPen(palette.color(QPalette::PlaceholderText));
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                      metrics.elidedText(shelfLineOf(*shot), Qt::ElideRight, text.width()));
    if (!model_.query().empty()) {
        text.translate(0, metrics.height());
        painter->setPen(palette.color(QPalette::Text));
        painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                          metrics.elidedText(secondLine(*shot, hidden), Qt::ElideRight, text.width()));
    }
    painter->restore();
}

void ShotDelegate::paintThumbnail(QPainter* painter, const QRect& area, const Shot& shot, bool hidden) const {
    const QImage image = thumbnails_.thumbnail(shot, hidden);
    const QPalette palette = QApplication::palette();
    if (image.isNull()) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette.color(QPalette::AlternateBase));
        painter->drawRoundedRect(area, 6, 6);
        return;
    }
    QSizeF size = image.deviceIndependentSize();
    size.scale(area.size(), Qt::KeepAspectRatio);
    const QRect target(QPoint(area.center().x() - qRound(size.width() / 2), area.center().y() - qRound(size.height() / 2)),
                       size.toSize());
    // The rounded, scaled thumbnail is made once and kept, so scrolling only copies pixels.
    const qreal ratio = painter->device()->devicePixelRatioF();
    const QString key = QString("cell:%1:%2:%3x%4@%5").arg(image.cacheKey()).arg(hidden).arg(target.width()).arg(target.height()).arg(ratio);
    QPixmap cell;
    if (!QPixmapCache::find(key, &cell)) {
        cell = QPixmap(target.size() * ratio);
        cell.setDevicePixelRatio(ratio);
        cell.fill(Qt::transparent);
        QPainter p(&cell);
        p.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        QPainterPath clip;
        clip.addRoundedRect(QRectF(QPointF(0, 0), QSizeF(target.size())), 6, 6);
        p.setClipPath(clip);
        p.drawImage(QRectF(QPointF(0, 0), QSizeF(target.size())), image);
        p.setClipping(false);
        p.setPen(QPen(palette.color(QPalette::Mid), 0.8));
        p.drawPath(clip);
        p.end();
        QPixmapCache::insert(key, cell);
    }
    painter->drawPixmap(target.topLeft(), cell);
    if (shot.isRead() && shot.isSensitive()) {
        // The private marker: a coral badge on every private shot, blurred or not.
        const QRectF badge(target.right() - 30, target.top() + 6, 24, 24);
        painter->setPen(Qt::NoPen);
        painter->setBrush(Brand::marker());
        painter->drawEllipse(badge);
        Icons::tinted(hidden ? "eye-off" : "private", Qt::white).paint(painter, badge.adjusted(4, 4, -4, -4).toRect());
    }
}

QString ShotDelegate::secondLine(const Shot& shot, bool hidden) const {
    if (hidden)
        return QObject::tr("Private: its words are hidden");
    const auto hits = model_.hitLines(shot);
    if (hits.empty())
        return QObject::tr("In the file name");
    QString line = QString::fromStdString(shot.lines[hits.front()].text).simplified();
    if (hits.size() > 1)
        line += QObject::tr("  (+%1 more)").arg(hits.size() - 1);
    return line;
}

} // namespace lumivale
