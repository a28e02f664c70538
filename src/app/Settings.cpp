#include "app/Settings.h"

namespace lumivale::Settings {

std::optional<bool> boolean(const QSettings& settings, const char* key) {
    const QVariant value = settings.value(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed().toLower();
        if (text == "true" || text == "1")
            return true;
        if (text == "false" || text == "0")
            return false;
    }
    return std::nullopt;
}

std::optional<int> integer(const QSettings& settings, const char* key) {
    const QVariant value = settings.value(key);
    if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::LongLong)
        return value.toInt();
    if (value.typeId() == QMetaType::QString) {
        bool ok = false;
        const int n = value.toString().trimmed().toInt(&ok);
        if (ok)
            return n;
    }
    return std::nullopt;
}

std::optional<std::string> string(const QSettings& settings, const char* key) {
    const QVariant value = settings.value(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString().toStdString();
}

} // namespace lumivale::Settings
