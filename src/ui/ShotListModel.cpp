#include "ui/ShotListModel.h"

#include "ui/ShotLabels.h"

#include <string_view>
#include <unordered_map>

namespace lumivale {
namespace {

constexpr int readingBurst = 150; // ms

bool samePaths(const std::vector<ShotPtr>& a, const std::vector<ShotPtr>& b) {
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && a[i]->path != b[i]->path)
            return false;
    return true;
}

} // namespace

ShotListModel::ShotListModel(AppModel& model, QObject* parent) : QAbstractListModel(parent), model_(model) {
    later_.setSingleShot(true);
    later_.setInterval(readingBurst);
    connect(&later_, &QTimer::timeout, this, &ShotListModel::refresh);
    connect(&model_, &AppModel::libraryChanged, &later_, qOverload<>(&QTimer::start));
    // What the user does shows at once.
    connect(&model_, &AppModel::queryChanged, this, &ShotListModel::refresh);
    connect(&model_, &AppModel::placeChanged, this, &ShotListModel::refresh);
    const auto repaintAll = [this] {
        if (!shots_.empty())
            emit dataChanged(index(0), index(static_cast<int>(shots_.size()) - 1));
    };
    connect(&model_, &AppModel::revealedChanged, this, repaintAll);
    connect(&model_, &AppModel::settingsChanged, this, repaintAll);
    refresh();
}

int ShotListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shots_.size());
}

const Shot* ShotListModel::shot(int row) const {
    return row >= 0 && row < static_cast<int>(shots_.size()) ? shots_[row].get() : nullptr;
}

int ShotListModel::rowOf(const std::string& path) const {
    for (size_t i = 0; i < shots_.size(); ++i)
        if (shots_[i]->path == path)
            return static_cast<int>(i);
    return -1;
}

QVariant ShotListModel::data(const QModelIndex& index, int role) const {
    const Shot* s = shot(index.row());
    if (!s)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: {
        QString& title = titles_[index.row()];
        if (title.isNull())
            title = titleOf(*s);
        return title;
    }
    case ShotRole: return QVariant::fromValue(static_cast<const void*>(s));
    case PathRole: return QString::fromStdString(s->path);
    default: return {};
    }
}

void ShotListModel::refresh() {
    later_.stop();
    std::vector<ShotPtr> next = model_.visible();
    titles_.assign(next.size(), QString());
    if (samePaths(shots_, next)) {
        shots_ = std::move(next);
        if (!shots_.empty())
            emit dataChanged(index(0), index(static_cast<int>(shots_.size()) - 1));
        return;
    }
    // A new order: the rows the views hold on to (selection, current item) follow their
    // shots by path, and those whose shot left the list let go.
    emit layoutAboutToBeChanged();
    const QModelIndexList held = persistentIndexList();
    std::unordered_map<std::string_view, int> rows;
    if (!held.isEmpty()) {
        rows.reserve(next.size());
        for (size_t i = 0; i < next.size(); ++i)
            rows.emplace(next[i]->path, static_cast<int>(i));
    }
    QModelIndexList moved;
    moved.reserve(held.size());
    for (const QModelIndex& old : held) {
        const auto it = rows.find(shots_[old.row()]->path);
        moved.push_back(it == rows.end() ? QModelIndex() : createIndex(it->second, 0));
    }
    shots_ = std::move(next);
    changePersistentIndexList(held, moved);
    emit layoutChanged();
}

} // namespace lumivale
