#include "ui/LockedListModel.h"

#include "app/AppModel.h"

namespace lumivale {

LockedListModel::LockedListModel(AppModel& model, QObject* parent)
    : QAbstractListModel(parent), model_(model) {
    connect(&model_, &AppModel::vaultChanged, this, &LockedListModel::refresh);
    connect(&model_, &AppModel::queryChanged, this, &LockedListModel::refresh);
    refresh();
}

int LockedListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant LockedListModel::data(const QModelIndex& index, int role) const {
    const LockedShot* locked = item(index.row());
    if (!locked) return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return QString::fromUtf8(locked->shot.name().data(),
                                 static_cast<qsizetype>(locked->shot.name().size()));
    case IdRole:
        return QString::fromStdString(locked->id);
    default:
        return {};
    }
}

const LockedShot* LockedListModel::item(int row) const {
    return row >= 0 && row < static_cast<int>(items_.size()) ? &items_[static_cast<size_t>(row)]
                                                             : nullptr;
}

int LockedListModel::rowOf(const std::string& id) const {
    for (size_t i = 0; i < items_.size(); ++i)
        if (items_[i].id == id) return static_cast<int>(i);
    return -1;
}

void LockedListModel::refresh() {
    std::vector<LockedShot> next =
        model_.query().empty() ? model_.lockedItems() : model_.lockedMatches();
    // A new selection changes nothing here; resetting then would lose the view's current item.
    if (next == items_) return;
    beginResetModel();
    items_ = std::move(next);
    endResetModel();
}

} // namespace lumivale
