#pragma once

#include "app/Place.h"

#include <QAbstractListModel>
#include <QListView>
#include <QTimer>

namespace lumivale {

class AppModel;

// The places of the sidebar in the model's order, with headings: the fixed places, the eight
// shelves with their counts, then the folders that are read (marked when off or unreadable).
class SidebarModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { PlaceRole = Qt::UserRole + 1, CountRole, NoteRole, HeadingRole };

    explicit SidebarModel(AppModel& model, QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The row of a place, or -1.
    int rowOf(const Place& place) const;
    std::optional<Place> placeAt(int row) const;
    void refresh();

private:
    struct Row {
        std::optional<Place> place; // none for a heading
        QString title;
        QIcon icon;
        qint64 count = -1; // -1: no count shown
        QString note;      // "Off", "Can't open"
    };
    AppModel& model_;
    std::vector<Row> rows_;
    QTimer later_;
};

// The sidebar: a list of places; choosing one sets the model's place.
class Sidebar : public QListView {
    Q_OBJECT

public:
    explicit Sidebar(AppModel& model, QWidget* parent = nullptr);

private:
    AppModel& model_;
    SidebarModel* places_;

    void followModel();
};

} // namespace lumivale
