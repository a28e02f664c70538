#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace lumivale {

class AppModel;

// The top of the main area: the place's title, the search field, scanning and reading progress,
// and the Tidy button.
class Header : public QWidget {
    Q_OBJECT

public:
    Header(AppModel& model, QAction* tidy, QWidget* parent = nullptr);
    QLineEdit* search() const { return search_; }

private:
    AppModel& model_;
    QLabel* title_;
    QLabel* progress_;
    QLineEdit* search_;

    void showPlace();
    void showProgress();
};

} // namespace lumivale
