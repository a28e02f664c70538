#pragma once

#include <QWidget>

class QLabel;
class QListView;
class QPushButton;
class QStackedLayout;

namespace lumivale {

class AppModel;
class LockedCell;
class LockedInspector;
class LockedListModel;

// The Locked place: while closed, a panel that says what is locked and opens it; while open, the
// locked items with a header that locks it again, and the inspector of the selected item. Any
// work in the open view restarts the auto-lock.
class VaultView : public QWidget {
    Q_OBJECT

  public:
    explicit VaultView(AppModel& model, QWidget* parent = nullptr);

    QListView* grid() const { return grid_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    AppModel& model_;
    QStackedLayout* stack_;
    QWidget* closed_;
    QLabel* headline_;
    QLabel* explanation_;
    QPushButton* review_;
    QWidget* open_;
    QLabel* lockLine_;
    LockedListModel* items_;
    LockedCell* cell_;
    QListView* grid_;
    LockedInspector* inspector_;

    QWidget* closedPanel();
    QWidget* openView();
    void refresh();
    void followSelection();
};

} // namespace lumivale
