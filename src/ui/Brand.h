#pragma once

#include <QColor>

class QApplication;
class QPalette;

namespace lumivale::Brand {

// The accent: selection, links and the app's own marks.
inline QColor accent() { return QColor::fromRgbF(0.054901960784313725, 0.48627450980392156, 0.5254901960784314); }
// The private marker: blurred shots, private counts and error banners.
inline QColor marker() { return QColor::fromRgbF(0.9490196078431372, 0.3607843137254902, 0.32941176470588235); }

enum class Look { system, light, dark };

// Follows the desktop's light or dark look (or the one asked for) and makes the accent the
// palette's highlight.
void apply(QApplication& app, Look look = Look::system);
// Our dark palette, for desktops that ask for a dark look but hand Qt a light palette.
QPalette darkPalette();
// Whether the palette in use is a dark one.
bool isDark();

} // namespace lumivale::Brand
