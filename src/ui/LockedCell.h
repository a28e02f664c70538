#pragma once

#include <QHash>
#include <QIcon>
#include <QPixmap>
#include <QStyledItemDelegate>

namespace lumivale {

class AppModel;
struct LockedShot;

// Draws one item of the open locked area: its decrypted picture under a lock mark, and
// "Locked" with the day it was locked.
class LockedCell : public QStyledItemDelegate {
    Q_OBJECT

  public:
    LockedCell(AppModel& model, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    static QSize cellSize();
    // "Locked " and the day and time it was locked.
    static QString lockedText(const LockedShot& item);

  private:
    AppModel& model_;
    QIcon lock_;
    // Pictures scaled for the cell, dropped the moment the locked area closes.
    mutable QHash<QString, QPixmap> pictures_;

    QPixmap picture(const QString& id, const QSize& size, qreal ratio) const;
};

} // namespace lumivale
