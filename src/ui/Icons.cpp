#include "ui/Icons.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

// The drawings are built into the program's static library, so they are registered by hand.
static void registerDrawings() {
    static const bool once = [] {
        Q_INIT_RESOURCE(icons);
        return true;
    }();
    (void)once;
}

namespace lumivale::Icons {

QIcon tinted(const QString& bundled, const QColor& color) {
    // Drawn once for each colour: views ask for icons while painting.
    static QHash<QString, QIcon> made;
    const QString key = bundled + color.name(QColor::HexArgb);
    if (const auto it = made.constFind(key); it != made.constEnd())
        return *it;
    registerDrawings();
    QFile file(":/icons/" + bundled + ".svg");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray svg = file.readAll().replace("#000000", color.name().toLatin1());
    QSvgRenderer renderer(svg);
    QIcon icon;
    // Drawn at each size and twice that, so it stays sharp at a device pixel ratio of 2.
    for (int size : {16, 20, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        icon.addPixmap(pixmap);
    }
    made.insert(key, icon);
    return icon;
}

QIcon symbol(const QString& bundled, const QString& themeName) {
    if (!themeName.isEmpty() && QIcon::hasThemeIcon(themeName))
        return QIcon::fromTheme(themeName);
    return tinted(bundled, QApplication::palette().color(QPalette::WindowText));
}

QIcon shelf(Shelf s) { return symbol("shelf-" + QString::fromUtf8(shelfId(s).data(), shelfId(s).size())); }

QIcon place(const Place& p) {
    switch (p.kind) {
    case Place::Kind::shelf: return shelf(p.shelf);
    case Place::Kind::folder: return symbol("folder", "folder");
    case Place::Kind::overview: return symbol("overview");
    case Place::Kind::all: return symbol("all");
    case Place::Kind::recent: return symbol("recent");
    case Place::Kind::privateOnes: return symbol("private");
    case Place::Kind::locked: return symbol("locked");
    }
    return {};
}

QIcon app() {
    registerDrawings();
    QIcon themed = QIcon::fromTheme("app.orvane.lumivale");
    return themed.isNull() ? QIcon(":/icons/lumivale.svg") : themed;
}

} // namespace lumivale::Icons
