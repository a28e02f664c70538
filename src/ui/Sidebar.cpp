#include "ui/Sidebar.h"

#include "app/AppModel.h"
#include "ui/Brand.h"
#include "ui/Icons.h"

#include <QDir>
#include <QLocale>
#include <QPainter>
#include <QStyledItemDelegate>

namespace lumivale {
namespace {

// Draws a place as icon, title and, on the right, its count or note; a heading in small capitals.
class PlaceDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const int line = option.fontMetrics.height();
        return {160, index.data(SidebarModel::HeadingRole).toBool() ? line + 14 : line + 12};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QPalette& palette = option.palette;
        QRect r = option.rect.adjusted(6, 1, -6, -1);
        if (index.data(SidebarModel::HeadingRole).toBool()) {
            QFont font = option.font;
            font.setPointSizeF(font.pointSizeF() * 0.85);
            font.setWeight(QFont::DemiBold);
            font.setCapitalization(QFont::AllUppercase);
            painter->setFont(font);
            painter->setPen(palette.color(QPalette::PlaceholderText));
            painter->drawText(r.adjusted(8, 6, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, index.data().toString());
            painter->restore();
            return;
        }
        const bool selected = option.state & QStyle::State_Selected;
        if (selected) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(palette.color(QPalette::Highlight));
            painter->drawRoundedRect(r, 6, 6);
        } else if (option.state & QStyle::State_MouseOver) {
            QColor hover = palette.color(QPalette::Highlight);
            hover.setAlphaF(0.12);
            painter->setPen(Qt::NoPen);
            painter->setBrush(hover);
            painter->drawRoundedRect(r, 6, 6);
        }
        if (option.state & QStyle::State_HasFocus) {
            painter->setPen(QPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Highlight), 1));
            painter->setBrush(Qt::NoBrush);
            painter->drawRoundedRect(r.adjusted(1, 1, -1, -1), 6, 6);
        }
        const QColor text = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
        const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
        const QRect iconRect(r.left() + 8, r.center().y() - 9, 18, 18);
        icon.paint(painter, iconRect);
        const QString note = index.data(SidebarModel::NoteRole).toString();
        const qint64 count = index.data(SidebarModel::CountRole).toLongLong();
        const QString right = !note.isEmpty() ? note : count >= 0 ? QLocale().toString(count) : QString();
        const int rightWidth = option.fontMetrics.horizontalAdvance(right);
        painter->setPen(note.isEmpty() ? (selected ? text : palette.color(QPalette::PlaceholderText))
                                       : (selected ? text : Brand::marker()));
        painter->drawText(r.adjusted(0, 0, -8, 0), Qt::AlignRight | Qt::AlignVCenter, right);
        painter->setPen(text);
        const QRect title = r.adjusted(34, 0, -16 - rightWidth, 0);
        painter->drawText(title, Qt::AlignLeft | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, title.width()));
        painter->restore();
    }
};

} // namespace

SidebarModel::SidebarModel(AppModel& model, QObject* parent) : QAbstractListModel(parent), model_(model) {
    later_.setSingleShot(true);
    later_.setInterval(250);
    connect(&later_, &QTimer::timeout, this, &SidebarModel::refresh);
    connect(&model_, &AppModel::libraryChanged, &later_, qOverload<>(&QTimer::start));
    connect(&model_, &AppModel::sourcesChanged, this, &SidebarModel::refresh);
    connect(&model_, &AppModel::vaultChanged, this, &SidebarModel::refresh);
    refresh();
}

int SidebarModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const {
    if (index.row() < 0 || index.row() >= rowCount())
        return {};
    const Row& row = rows_[index.row()];
    switch (role) {
    case Qt::DisplayRole: return row.title;
    case Qt::AccessibleTextRole:
        return row.note.isEmpty() ? (row.count >= 0 ? tr("%1, %2").arg(row.title).arg(row.count) : row.title)
                                  : tr("%1, %2").arg(row.title, row.note);
    case Qt::DecorationRole: return row.icon;
    case CountRole: return row.count;
    case NoteRole: return row.note;
    case HeadingRole: return !row.place.has_value();
    default: return {};
    }
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex& index) const {
    if (index.row() < 0 || index.row() >= rowCount() || !rows_[index.row()].place)
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

int SidebarModel::rowOf(const Place& place) const {
    for (size_t i = 0; i < rows_.size(); ++i)
        if (rows_[i].place == place)
            return static_cast<int>(i);
    return -1;
}

std::optional<Place> SidebarModel::placeAt(int row) const {
    return row >= 0 && row < rowCount() ? rows_[row].place : std::nullopt;
}

void SidebarModel::refresh() {
    later_.stop();
    const std::string home = QDir::homePath().toStdString();
    const Tally tally = model_.tally();
    std::vector<Row> next;
    const auto add = [&](const Place& place, qint64 count, QString note = {}) {
        next.push_back({place, QString::fromStdString(place.title(home)), Icons::place(place), count, std::move(note)});
    };
    next.push_back({std::nullopt, tr("Library"), {}, -1, {}});
    add(Place::of(Place::Kind::overview), -1);
    add(Place::of(Place::Kind::all), tally.total);
    add(Place::of(Place::Kind::recent), static_cast<qint64>(model_.shots(Place::of(Place::Kind::recent)).size()));
    add(Place::of(Place::Kind::privateOnes), tally.sensitive);
    add(Place::of(Place::Kind::locked), model_.vaultCount());
    next.push_back({std::nullopt, tr("Shelves"), {}, -1, {}});
    for (Shelf s : allShelves)
        add(Place::ofShelf(s), tally.count(s));
    next.push_back({std::nullopt, tr("Folders"), {}, -1, {}});
    for (const Source& source : model_.sources()) {
        const Place place = Place::ofFolder(source.path);
        const QString note = !source.enabled ? tr("Off") : !source.readable ? tr("Can't open") : QString();
        add(place, static_cast<qint64>(model_.shots(place).size()), note);
        if (!source.enabled)
            next.back().icon = Icons::symbol("folder-off");
        else if (!source.readable)
            next.back().icon = Icons::tinted("warning", Brand::marker());
    }
    if (next.size() == rows_.size()) {
        rows_ = std::move(next);
        emit dataChanged(index(0), index(rowCount() - 1));
        return;
    }
    beginResetModel();
    rows_ = std::move(next);
    endResetModel();
}

Sidebar::Sidebar(AppModel& model, QWidget* parent) : QListView(parent), model_(model) {
    setObjectName("sidebar");
    setAccessibleName(tr("Places"));
    places_ = new SidebarModel(model_, this);
    setModel(places_);
    setItemDelegate(new PlaceDelegate(this));
    setMouseTracking(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumWidth(200);
    QPalette p = palette();
    p.setColor(QPalette::Base, p.color(QPalette::Window));
    setPalette(p);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (auto place = places_->placeAt(current.row()))
            model_.setPlace(*place);
    });
    connect(&model_, &AppModel::placeChanged, this, &Sidebar::followModel);
    connect(places_, &QAbstractItemModel::modelReset, this, &Sidebar::followModel);
    followModel();
}

void Sidebar::followModel() {
    const int row = places_->rowOf(model_.place());
    if (row >= 0 && currentIndex().row() != row)
        setCurrentIndex(places_->index(row));
}

} // namespace lumivale
