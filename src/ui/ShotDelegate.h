#pragma once

#include <QStyledItemDelegate>

namespace lumivale {

class AppModel;
class ThumbnailProvider;
struct Shot;

// Draws one shot of the grid: its thumbnail (blurred while private and hidden), its title and
// its shelf, or with a query its first hit line.
class ShotDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    ShotDelegate(AppModel& model, ThumbnailProvider& thumbnails, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The size of every cell: one more line with a query.
    QSize cellSize() const;

private:
    AppModel& model_;
    ThumbnailProvider& thumbnails_;

    void paintThumbnail(QPainter* painter, const QRect& area, const Shot& shot, bool hidden) const;
    QString secondLine(const Shot& shot, bool hidden) const;
};

} // namespace lumivale
