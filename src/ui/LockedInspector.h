#pragma once

#include <QScrollArea>
#include <optional>

class QFormLayout;
class QLabel;
class QPushButton;

namespace lumivale {

class AppModel;
struct LockedShot;

// The selected item of the open locked area: its decrypted picture, where it came from and when
// it was locked, and the actions that restore it (to its own folder or another) or discard it.
class LockedInspector : public QScrollArea {
    Q_OBJECT

  public:
    explicit LockedInspector(AppModel& model, QWidget* parent = nullptr);

  private:
    AppModel& model_;
    QLabel* nothing_;
    QWidget* details_;
    QLabel* picture_;
    QFormLayout* facts_;
    QPushButton* restoreHome_;
    QPushButton* restoreElsewhere_;
    QPushButton* discard_;

    std::optional<LockedShot> selected() const;
    void refresh();
    void restoreTo(const std::string& folder);
};

} // namespace lumivale
