#pragma once

#include "ui/InspectorPane.h"

#include <optional>

class QFormLayout;
class QLabel;
class QPushButton;

namespace lumivale {

class AppModel;
struct LockedShot;

// The selected item of the open locked area: its decrypted picture, where it came from and when
// it was locked, and the actions that restore it (to its own folder or another) or discard it.
class LockedInspector : public InspectorPane {
    Q_OBJECT

  public:
    explicit LockedInspector(AppModel& model, QWidget* parent = nullptr);

  private:
    AppModel& model_;
    QFormLayout* facts_;
    QPushButton* restoreHome_;
    QPushButton* restoreElsewhere_;
    QPushButton* discard_;

    std::optional<LockedShot> selected() const;
    void refresh();
    void restoreTo(const std::string& folder);
};

} // namespace lumivale
