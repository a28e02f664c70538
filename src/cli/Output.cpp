#include "cli/Output.h"

#include "core/Folders.h"
#include "core/Titles.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <iostream>

namespace lumivale::cli {

void printJsonLine(const QJsonObject& object) {
    std::cout << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() << "\n";
}

QString isoDate(Date date) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count();
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(ms);
    // With a fixed offset, Qt writes the offset into the ISO form.
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate);
}

QJsonObject shotJson(const Shot& shot) {
    QJsonArray flags;
    for (SensitiveKind kind : shot.flags)
        flags.append(QString::fromUtf8(sensitiveKindId(kind).data()));
    const auto title = Titles::of(shot, 60);
    QJsonObject o{
        {"path", QString::fromStdString(shot.path)},
        {"size", static_cast<qint64>(shot.size)},
        {"date", isoDate(shot.date())},
        {"read", shot.isRead()},
        {"failed", shot.failed},
        {"shelf", shot.isRead() ? QJsonValue(QString::fromUtf8(shelfId(shot.category()).data())) : QJsonValue()},
        {"manual", shot.manual ? QJsonValue(QString::fromUtf8(shelfId(*shot.manual).data())) : QJsonValue()},
        {"confidence", shot.guessScore},
        {"private", shot.isRead() && shot.isSensitive()},
        {"flags", flags},
        {"title", title ? QJsonValue(QString::fromStdString(*title)) : QJsonValue()},
    };
    return o;
}

std::string printable(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<unsigned char>(c);
        // A byte that does not start a valid UTF-8 character is shown as its value.
        size_t length = byte < 0x80 ? 1 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 0;
        if (length > 1 && !Folders::isUtf8(text.substr(i, length)))
            length = 0;
        if (length > 1) {
            out.append(text.substr(i, length));
            i += length - 1;
        } else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else if (c == '\\')
            out += "\\\\";
        else if (byte < 0x20 || byte >= 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            out += escaped;
        } else
            out += c;
    }
    return out;
}

std::string shotLine(const Shot& shot) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(shot.date().time_since_epoch()).count();
    const std::string when = QDateTime::fromMSecsSinceEpoch(ms).toString("yyyy-MM-dd HH:mm").toStdString();
    std::string shelf = shot.isRead() ? std::string(shelfTitle(shot.category())) : "(not read yet)";
    if (shot.failed)
        shelf = "(couldn't be read)";
    char line[64];
    std::snprintf(line, sizeof line, "%-20s", shelf.c_str());
    std::string out = std::string(line) + "  " + when + "  " + printable(shot.path);
    if (shot.isRead() && shot.isSensitive())
        out += "  [private]";
    return out;
}

QJsonObject tallyJson(const Tally& tally) {
    QJsonObject shelves;
    for (Shelf shelf : allShelves)
        shelves[QString::fromUtf8(shelfId(shelf).data())] = static_cast<qint64>(tally.count(shelf));
    return QJsonObject{{"total", static_cast<qint64>(tally.total)},
                       {"unread", static_cast<qint64>(tally.unread)},
                       {"sensitive", static_cast<qint64>(tally.sensitive)},
                       {"bytes", static_cast<qint64>(tally.bytes)},
                       {"shelves", shelves}};
}

std::string byteText(int64_t bytes) {
    const char* units[] = {"bytes", "kB", "MB", "GB", "TB"};
    double value = static_cast<double>(bytes);
    int unit = 0;
    while (value >= 1000 && unit < 4) {
        value /= 1000;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", value, units[unit]);
    return text;
}

std::string tallyText(const Tally& tally) {
    std::string out = std::to_string(tally.total) + (tally.total == 1 ? " screenshot" : " screenshots") +
                      " (" + byteText(tally.bytes) + "), " + std::to_string(tally.sensitive) +
                      " private, " + std::to_string(tally.unread) + " not read yet\n";
    for (Shelf shelf : allShelves) {
        char line[80];
        std::snprintf(line, sizeof line, "  %-20s %lld\n", std::string(shelfTitle(shelf)).c_str(),
                      static_cast<long long>(tally.count(shelf)));
        out += line;
    }
    return out;
}

} // namespace lumivale::cli
