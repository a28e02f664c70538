#pragma once

#include "app/AppModel.h"

#include <QAbstractListModel>
#include <QTimer>

namespace lumivale {

// The model's `visible` list as a Qt list. It is brought up to date in place, so selection,
// current item and scroll position survive a rescan, a reading or a new query.
class ShotListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { ShotRole = Qt::UserRole + 1, PathRole };

    explicit ShotListModel(AppModel& model, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // The shot of a row, or null.
    const Shot* shot(int row) const;
    // The row of a path, or -1.
    int rowOf(const std::string& path) const;
    // Takes the model's visible list now.
    void refresh();

private:
    AppModel& model_;
    std::vector<ShotPtr> shots_;
    // Titles take a pattern search each, so a row's is made once, when first drawn.
    mutable std::vector<QString> titles_;
    QTimer later_; // gathers the changes of a burst of readings into one refresh
};

} // namespace lumivale
