#pragma once

#include "core/Vault.h"

#include <QAbstractListModel>

namespace lumivale {

class AppModel;

// The open locked area's items as a Qt list: every item newest first, or the matches of the
// query while one is typed. Empty while the locked area is closed.
class LockedListModel : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role { IdRole = Qt::UserRole + 1 };

    explicit LockedListModel(AppModel& model, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // The item of a row, or null.
    const LockedShot* item(int row) const;
    // The row of an item, or -1.
    int rowOf(const std::string& id) const;

  private:
    AppModel& model_;
    std::vector<LockedShot> items_;

    void refresh();
};

} // namespace lumivale
