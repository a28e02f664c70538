#include "ui/Brand.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace lumivale::Brand {
namespace {

// The desktop's wish for a dark look, from the settings portal that GNOME, KDE and others share:
// "color-scheme" 1 means prefer dark.
bool desktopPrefersDark() {
    auto call = QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                               "org.freedesktop.portal.Settings", "Read");
    call << QString("org.freedesktop.appearance") << QString("color-scheme");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 500);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return false;
    QVariant value = reply.arguments().first().value<QDBusVariant>().variant();
    // The portal wraps the value once more.
    if (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toUInt() == 1;
}

bool paletteIsDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

QPalette darkPalette() {
    QPalette p;
    const QColor window(0x24, 0x27, 0x29), base(0x1c, 0x1e, 0x20), text(0xe6, 0xe8, 0xe9);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, QColor(0x2c, 0x30, 0x33));
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, QColor(0x31, 0x35, 0x38));
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::ToolTipBase, QColor(0x31, 0x35, 0x38));
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::PlaceholderText, QColor(0x9a, 0xa0, 0xa4));
    p.setColor(QPalette::Light, QColor(0x45, 0x4a, 0x4e));
    p.setColor(QPalette::Midlight, QColor(0x3a, 0x3f, 0x42));
    p.setColor(QPalette::Mid, QColor(0x4f, 0x55, 0x59));
    p.setColor(QPalette::Dark, QColor(0x15, 0x17, 0x18));
    p.setColor(QPalette::Shadow, Qt::black);
    p.setColor(QPalette::BrightText, Qt::white);
    for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, QColor(0x7c, 0x82, 0x86));
    return p;
}

void apply(QApplication& app, Look look) {
    // Fusion draws the palette faithfully on every desktop, light or dark.
    app.setStyle(QStyleFactory::create("Fusion"));
    QPalette palette = look == Look::light ? app.style()->standardPalette() : app.palette();
    if (look == Look::dark || (look == Look::system && !paletteIsDark(palette) && desktopPrefersDark()))
        palette = darkPalette();
    for (auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Highlight, accent());
        palette.setColor(group, QPalette::HighlightedText, Qt::white);
        palette.setColor(group, QPalette::Link, paletteIsDark(palette) ? accent().lighter(150) : accent());
    }
    app.setPalette(palette);
}

bool isDark() { return paletteIsDark(QApplication::palette()); }

} // namespace lumivale::Brand
