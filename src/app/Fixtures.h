#pragma once

// The made-up screenshots that the self-check draws, reads and files like real ones. Each one
// knows the shelf it must land on and whether a private number must be found on it.

#include "core/Date.h"
#include "core/Shelf.h"
#include "core/Status.h"

#include <QImage>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

struct Fixture {
    enum class Kind {
        idCard,
        passport,
        receipt,
        upiPayment,
        hardwareReceipt,
        boardingPass,
        trainTicket,
        movieTicket,
        chat,
        groupChat,
        code,
        terminal,
        shopping,
        map,
        recipe,
        sunset,
    };

    Kind kind = Kind::sunset;
    Shelf expected = Shelf::other; // the shelf the sorter must choose
    bool sensitive = false;        // whether a private number must be found
    double daysAgo = 0;            // how long before "now" it was taken

    // The moment the screenshot was taken: `now` less daysAgo days.
    Date date(Date now) const;
    // "Screenshot 2026-11-01 at 9.00.00 AM.png" for the fixture's date in the local time zone.
    std::string fileName(Date now) const;

    bool operator==(const Fixture&) const = default;
    auto operator<=>(const Fixture&) const = default;
};

// The raw value of a kind: its case name ("idCard").
std::string_view fixtureKindId(Fixture::Kind kind);

namespace Fixtures {

// The sixteen fixtures in their fixed order.
const std::vector<Fixture>& all();

// The twelve-digit number printed on the ID card: a fixed eleven digits and the first check
// digit that passes the Verhoeff test.
const std::string& idNumber();

// The size of a kind's canvas in points; its picture is twice that in pixels.
QSizeF size(Fixture::Kind kind);

// Draws one fixture at two pixels per point; a null image when it cannot be drawn (no
// QGuiApplication, or no memory for the picture).
QImage image(Fixture::Kind kind);

// The texts drawn on a fixture that a reader should find, word for word; none for the sunset.
std::vector<std::string> quotedTexts(Fixture::Kind kind);

// One drawn fixture and the path of its file.
struct Written {
    Fixture fixture;
    std::string path;
};

struct WriteResult {
    Status status;              // the first failure, if any
    std::vector<Written> files; // the files written before it, in order
};

// Makes `folder` (with its parents), draws each fixture into it as a PNG file named by
// fileName(now), never replacing a file, and dates the file back to the fixture's date.
WriteResult write(const std::vector<Fixture>& fixtures, const std::string& folder, Date now);

} // namespace Fixtures
} // namespace lumivale
