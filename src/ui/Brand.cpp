#include "ui/Brand.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace lumivale::Brand {

void apply(QApplication& app) {
    // Fusion draws the palette faithfully on every desktop, light or dark.
    app.setStyle(QStyleFactory::create("Fusion"));
    QPalette palette = app.palette();
    for (auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Highlight, accent());
        palette.setColor(group, QPalette::HighlightedText, Qt::white);
        palette.setColor(group, QPalette::Link, isDark() ? accent().lighter(150) : accent());
    }
    app.setPalette(palette);
}

bool isDark() {
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace lumivale::Brand
