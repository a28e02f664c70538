#pragma once

#include "ui/InspectorPane.h"

class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QTextBrowser;
class QToolButton;
class QVBoxLayout;

namespace lumivale {

class AppModel;
class ShotActions;
class ThumbnailProvider;
struct Shot;

// Everything about the selected shot: the picture (blurred while hidden, with a button to show it
// for 30 seconds), title, shelf picker, the sorter's confidence, facts with copy buttons, private
// numbers, file details, barcodes and the recognised text with the query's hits marked.
class Inspector : public InspectorPane {
    Q_OBJECT

public:
    Inspector(AppModel& model, ThumbnailProvider& thumbnails, ShotActions& actions, QWidget* parent = nullptr);

private:
    AppModel& model_;
    ThumbnailProvider& thumbnails_;
    QPushButton* reveal_;
    QLabel* title_;
    QComboBox* shelf_;
    QLabel* confidence_;
    QWidget* factsBox_;
    QFormLayout* facts_;
    QLabel* privateNumbers_;
    QFormLayout* file_;
    QLabel* textHeading_;
    QTextBrowser* text_;
    // The picture at the inspector's size, read away from the main thread.
    std::string sharpPath_;
    QImage sharp_;

    void refresh();
    void showPicture(const Shot& shot);
    void loadSharp(const Shot& shot);
    void setPicture(const QImage& image);
    void fillFacts(const Shot& shot, bool hidden);
    void fillFile(const Shot& shot);
    void fillText(const Shot& shot, bool hidden);
};

} // namespace lumivale
