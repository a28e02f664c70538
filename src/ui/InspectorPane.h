#pragma once

#include "core/Date.h"

#include <QScrollArea>

class QLabel;
class QVBoxLayout;

namespace lumivale {

// What both inspectors are: a scroll pane showing a line while nothing is selected, and
// otherwise the details, which begin with the picture and which each inspector goes on filling.
class InspectorPane : public QScrollArea {
    Q_OBJECT

  protected:
    static constexpr int pictureWidth = 300;

    // A date as the user's locale writes it in full.
    static QString when(Date date);
    // A value the user can select and copy, wrapped to the pane.
    static QLabel* value(const QString& text);

    InspectorPane(const QString& name, const QString& accessibleName, const QString& nothingText, QWidget* parent);

    QLabel* nothing_;
    QWidget* details_;
    QVBoxLayout* detailsLayout_;
    QLabel* picture_;
};

} // namespace lumivale
