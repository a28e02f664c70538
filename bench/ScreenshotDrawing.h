#pragma once
// Screenshot-like pictures for the benchmarks that make thumbnails of them.

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <string>

namespace lumivale::bench {

// A screenshot-like picture: a sidebar, a title bar and lines of text, in colours of its own.
inline void drawScreenshot(const std::string& path, QSize size, int seed) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(seed * 37 % 360, 20, 250));
    QPainter painter(&image);
    painter.fillRect(0, 0, size.width() / 5, size.height(),
                     QColor::fromHsv(seed * 53 % 360, 60, 60));
    painter.fillRect(0, 0, size.width(), size.height() / 20, QColor(40, 40, 40));
    QFont font("Liberation Sans");
    font.setPixelSize(std::max(10, size.height() / 45));
    painter.setFont(font);
    for (int y = size.height() / 10, line = 0; y < size.height(); y += font.pixelSize() * 2, ++line)
        painter.drawText(size.width() / 4, y,
                         QString("Line %1 of picture %2: the total due is %3.00 EUR")
                             .arg(line)
                             .arg(seed)
                             .arg(seed * 7 + line));
    painter.end();
    image.save(QString::fromStdString(path));
}

} // namespace lumivale::bench
