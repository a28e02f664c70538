#pragma once

#include <QFrame>

class QLabel;
class QPushButton;
class QToolButton;

namespace lumivale {

class AppModel;

// The model's banner across the top of the window, with Undo when it carries a journal; errors
// are drawn in the private marker's colour.
class BannerBar : public QFrame {
    Q_OBJECT

public:
    explicit BannerBar(AppModel& model, QWidget* parent = nullptr);

private:
    AppModel& model_;
    QLabel* text_;
    QPushButton* undo_;
    QToolButton* close_;

    void refresh();
};

} // namespace lumivale
