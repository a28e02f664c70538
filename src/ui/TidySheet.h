#pragma once

#include "app/TidyChoices.h"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace lumivale {

class AppModel;

// The tidy sheet: files screenshots into one folder per shelf, or clears out old ones into the
// Trash, with a live preview of what either would do. It runs through the model, and closing it
// (Cancel, a run, or dismissing it) turns the model's `showTidy` off.
class TidySheet : public QDialog {
    Q_OBJECT

  public:
    enum class Mode { file, clear };

    explicit TidySheet(AppModel& model, QWidget* parent = nullptr);

    Mode mode() const { return mode_; }
    const TidyChoices& choices() const { return choices_; }

  private:
    AppModel& model_;
    Mode mode_ = Mode::file;
    TidyChoices choices_;
    TidyPlan plan_;            // file mode: what moving would do
    std::vector<ShotPtr> old_; // clear mode: what would go to the Trash

    QButtonGroup* modes_;
    QButtonGroup* scopes_;
    QCheckBox* keepPrivate_;
    QStackedWidget* options_;
    QComboBox* layout_;
    QCheckBox* rename_;
    QLabel* archive_;
    QButtonGroup* ages_;
    QWidget* preview_;
    QVBoxLayout* previewRows_;
    QLabel* note_;
    QPushButton* run_;

    QWidget* fileOptions();
    QWidget* clearOptions();
    void chooseArchive();
    // Recomputes the plan or the old ones, the preview, the labels and the button.
    void refresh();
    void showPlan();
    void showOld();
    QLabel* previewLine(const QString& text, const char* name);
    void run();
};

} // namespace lumivale
