#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace lumivale {

class AppModel;

// The settings: the folders that are read (added, removed, switched on and off), blurring,
// watching, the auto-lock's minutes, the archive folder and the reading languages found. Every
// change goes to the model at once.
class SettingsDialog : public QDialog {
    Q_OBJECT

  public:
    explicit SettingsDialog(AppModel& model, QWidget* parent = nullptr);

  private:
    AppModel& model_;
    QListWidget* folders_;
    QPushButton* remove_;
    QCheckBox* blur_;
    QCheckBox* watch_;
    QSpinBox* lockAfter_;
    QLabel* archive_;

    QWidget* foldersBox();
    QWidget* languagesBox();
    void showFolders();
    void showSettings();
    void updateRemove();
};

} // namespace lumivale
