#include "app/Fixtures.h"

#include "app/Canvas.h"
#include "app/FixtureDrawings.h"
#include "core/FileOps.h"
#include "core/Sensitive.h"

#include <QBuffer>
#include <QGuiApplication>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

namespace lumivale {
namespace {

using Kind = Fixture::Kind;

constexpr std::array<std::string_view, 16> kindIds = {
    "idCard",       "passport",    "receipt",     "upiPayment", "hardwareReceipt",
    "boardingPass", "trainTicket", "movieTicket", "chat",       "groupChat",
    "code",         "terminal",    "shopping",    "map",        "recipe",
    "sunset"};

timespec timespecOf(Date date) {
    const auto ns = date.time_since_epoch().count();
    constexpr long long perSecond = 1'000'000'000;
    long long seconds = ns / perSecond;
    long long rest = ns % perSecond;
    if (rest < 0) {
        rest += perSecond;
        --seconds;
    }
    return timespec{static_cast<time_t>(seconds), static_cast<long>(rest)};
}

} // namespace

Date Fixture::date(Date now) const {
    return now - std::chrono::round<std::chrono::nanoseconds>(
                     std::chrono::duration<double>(daysAgo * 86400.0));
}

std::string Fixture::fileName(Date now) const {
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icu::UnicodeString("yyyy-MM-dd 'at' h.mm.ss a"),
                                 icu::Locale("en_US_POSIX"), status);
    // Read the zone afresh, so the name follows the local zone even if it changed since start.
    format.adoptTimeZone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString formatted;
    format.format(secondsSince1970(date(now)) * 1000.0, formatted);
    std::string name;
    formatted.toUTF8String(name);
    return "Screenshot " + name + ".png";
}

std::string_view fixtureKindId(Fixture::Kind kind) {
    return kindIds[static_cast<size_t>(kind)];
}

namespace Fixtures {

const std::vector<Fixture>& all() {
    static const std::vector<Fixture> fixtures = {
        {Kind::receipt, Shelf::bills, false, 0.2},
        {Kind::chat, Shelf::chats, false, 0.5},
        {Kind::boardingPass, Shelf::tickets, false, 1.3},
        {Kind::code, Shelf::code, false, 1.8},
        {Kind::upiPayment, Shelf::bills, false, 2.4},
        {Kind::idCard, Shelf::ids, true, 3.1},
        {Kind::shopping, Shelf::shopping, false, 4.2},
        {Kind::map, Shelf::maps, false, 5.6},
        {Kind::terminal, Shelf::code, false, 6.3},
        {Kind::movieTicket, Shelf::tickets, false, 8.5},
        {Kind::groupChat, Shelf::chats, false, 11.2},
        {Kind::recipe, Shelf::other, false, 13.7},
        {Kind::passport, Shelf::ids, true, 19.4},
        {Kind::trainTicket, Shelf::tickets, false, 24.9},
        {Kind::hardwareReceipt, Shelf::bills, false, 33.3},
        {Kind::sunset, Shelf::other, false, 41.0},
    };
    return fixtures;
}

const std::string& idNumber() {
    static const std::string number = [] {
        const std::string prefix = "48217395206";
        return prefix + char('0' + Sensitive::verhoeffDigit(prefix));
    }();
    return number;
}

QSizeF size(Fixture::Kind kind) {
    const auto& drawing = FixtureDrawings::of(kind);
    return QSizeF(drawing.w, drawing.h);
}

QImage image(Fixture::Kind kind) {
    // Fonts can only be reached through a running QGuiApplication.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return {};
    const auto& drawing = FixtureDrawings::of(kind);
    Canvas canvas(drawing.w, drawing.h, drawing.bg);
    return canvas.render(drawing.draw);
}

std::vector<std::string> quotedTexts(Fixture::Kind kind) {
    return FixtureDrawings::of(kind).quoted;
}

WriteResult write(const std::vector<Fixture>& fixtures, const std::string& folder, Date now) {
    WriteResult result;
    if (Status made = makeFolders(folder); !made) {
        result.status = Status::failure(
            "Couldn't make the folder " + folder + ": " + made.message(), made.code());
        return result;
    }
    for (const Fixture& fixture : fixtures) {
        const std::string kind(fixtureKindId(fixture.kind));
        const QImage picture = image(fixture.kind);
        QByteArray png;
        QBuffer buffer(&png);
        if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) ||
            !picture.save(&buffer, "PNG")) {
            result.status = Status::failure("Couldn't draw the " + kind + " screenshot.");
            return result;
        }
        const std::string path = folder + "/" + fixture.fileName(now);
        if (Status written = writeNew(path, std::string_view(png.constData(), png.size()));
            !written) {
            result.status = Status::failure("Couldn't write " + path + ": " + written.message(),
                                            written.code());
            return result;
        }
        // Linux keeps no settable birth time; the modification time carries the date.
        const timespec when = timespecOf(fixture.date(now));
        const timespec times[2] = {when, when};
        if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) {
            const int err = errno;
            result.status =
                Status::failure("Couldn't date " + path + ": " + describeErrno(err), err);
            return result;
        }
        result.files.push_back({fixture, path});
    }
    return result;
}

} // namespace Fixtures
} // namespace lumivale
