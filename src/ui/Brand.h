#pragma once

#include <QColor>

class QApplication;

namespace lumivale::Brand {

// The accent: selection, links and the app's own marks.
inline QColor accent() { return QColor::fromRgbF(0.054901960784313725, 0.48627450980392156, 0.5254901960784314); }
// The private marker: blurred shots, private counts and error banners.
inline QColor marker() { return QColor::fromRgbF(0.9490196078431372, 0.3607843137254902, 0.32941176470588235); }

// Keeps the system's light or dark palette and makes the accent its highlight.
void apply(QApplication& app);
// Whether the palette in use is a dark one.
bool isDark();

} // namespace lumivale::Brand
