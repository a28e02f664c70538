#include "ui/ShotLabels.h"

#include "core/Titles.h"

#include <QObject>

namespace lumivale {

QString titleOf(const Shot& shot) {
    const auto title = Titles::of(shot, 60);
    return QString::fromStdString(title ? *title : std::string(shot.name()));
}

QString shelfLineOf(const Shot& shot) {
    if (!shot.isRead()) return QObject::tr("Waiting to be read");
    if (shot.failed) return QObject::tr("Couldn't be read");
    const std::string_view title = shelfTitle(shot.category());
    return QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size()));
}

} // namespace lumivale
