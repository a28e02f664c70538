#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;

namespace lumivale {

class AppModel;

// The first-run welcome: what Lumivale does, that nothing leaves the computer, the screenshot
// folder it found (and a way to add another), and the blur setting. Start, or closing it, ends
// the welcome, after which the folders are read.
class WelcomeSheet : public QDialog {
    Q_OBJECT

  public:
    explicit WelcomeSheet(AppModel& model, QWidget* parent = nullptr);

  private:
    AppModel& model_;
    QLabel* folders_;
    QCheckBox* blur_;

    void refresh();
};

} // namespace lumivale
