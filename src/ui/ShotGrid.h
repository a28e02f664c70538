#pragma once

#include <QListView>
#include <QTimer>
#include <QWidget>

#include <string>
#include <vector>

class QLabel;
class QStackedLayout;
class QToolButton;

namespace lumivale {

class AppModel;
class ShotActions;
class ShotDelegate;
class ShotListModel;
class ThumbnailProvider;

// The grid of the shots of the current place: a list view with cells of one size (so it lays out
// 100,000 shots as quickly as 100), multi-selection, the shot actions, and with a query a bar that
// counts the matches and switches between best and newest first.
class ShotGrid : public QWidget {
    Q_OBJECT

public:
    ShotGrid(AppModel& model, ThumbnailProvider& thumbnails, QWidget* parent = nullptr);

    // The paths of the selected shots, in grid order; the model's selection when none is.
    std::vector<std::string> selectedPaths() const;
    // Attaches the shared actions: context menu, keys and their enabled state.
    void attach(ShotActions& actions);
    QListView* view() const { return view_; }
    ShotListModel* listModel() const { return list_; }

private:
    AppModel& model_;
    ThumbnailProvider& thumbnails_;
    ShotListModel* list_;
    ShotDelegate* delegate_;
    QListView* view_;
    QWidget* matchBar_;
    QLabel* matchCount_;
    QToolButton* bestFirst_;
    QToolButton* newestFirst_;
    QLabel* empty_;
    QStackedLayout* stack_;
    QTimer wanted_; // tells the thumbnail maker what is on screen once scrolling settles for a frame

    void followModelSelection();
    void updateBars();
    void askForThumbnails();
};

} // namespace lumivale
