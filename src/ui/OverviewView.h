#pragma once

#include "core/Shot.h"
#include "core/Tally.h"

#include <QAbstractButton>
#include <QScrollArea>
#include <QTimer>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace lumivale {

class AppModel;
class ThumbnailProvider;

// One shelf on the overview: its symbol, title, count and newest four thumbnails; choosing it
// opens the shelf.
class ShelfCard : public QAbstractButton {
    Q_OBJECT

public:
    ShelfCard(AppModel& model, ThumbnailProvider& thumbnails, Shelf shelf, QWidget* parent = nullptr);
    QSize sizeHint() const override;
    // Takes the shelf's count from the library's tally.
    void refresh(const Tally& tally);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    AppModel& model_;
    ThumbnailProvider& thumbnails_;
    Shelf shelf_;
    int64_t count_ = 0;
    std::vector<ShotPtr> newest_;
};

// The overview: a card per shelf, a line about private screenshots, and for an empty library
// what Lumivale looks at and how to add a folder.
class OverviewView : public QScrollArea {
    Q_OBJECT

public:
    OverviewView(AppModel& model, ThumbnailProvider& thumbnails, QWidget* parent = nullptr);

private:
    AppModel& model_;
    QStackedWidget* pages_;
    QWidget* cardsPage_;
    QWidget* emptyPage_;
    QLabel* summary_;
    QLabel* privateLine_;
    QPushButton* reviewPrivate_;
    QLabel* looksAt_;
    std::vector<ShelfCard*> cards_;
    QTimer later_;

    void refresh();
};

} // namespace lumivale
