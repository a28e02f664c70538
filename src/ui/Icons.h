#pragma once

#include "app/Place.h"
#include "core/Shelf.h"

#include <QIcon>
#include <QString>

namespace lumivale::Icons {

// A symbol in the palette's text colour: the icon theme's `themeName` when the desktop's theme
// has it, else our own drawing called `bundled`.
QIcon symbol(const QString& bundled, const QString& themeName = {});
// The same drawing in a given colour (never from the theme).
QIcon tinted(const QString& bundled, const QColor& color);
// The symbol of a shelf.
QIcon shelf(Shelf s);
// The symbol of a place in the sidebar.
QIcon place(const Place& p);
// The application's own icon.
QIcon app();

} // namespace lumivale::Icons
