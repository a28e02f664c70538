#pragma once

#include <array>
#include <optional>
#include <set>
#include <string_view>

namespace lumivale {

// The category of a screenshot, in display order.
enum class Shelf { ids, bills, tickets, chats, code, shopping, maps, other };

inline constexpr std::array<Shelf, 8> allShelves = {Shelf::ids,  Shelf::bills,    Shelf::tickets,
                                                    Shelf::chats, Shelf::code,    Shelf::shopping,
                                                    Shelf::maps,  Shelf::other};

// The raw value, as stored in files ("ids", "bills", …).
std::string_view shelfId(Shelf s);
// The long display title ("IDs & documents").
std::string_view shelfTitle(Shelf s);
// The one-word label ("ID").
std::string_view shelfShort(Shelf s);
// The symbol name drawn for the shelf.
std::string_view shelfSymbol(Shelf s);
// The sub-folder that tidying makes for the shelf ("IDs and documents").
std::string_view shelfFolderName(Shelf s);
// The shelf with exactly this raw value, or nothing.
std::optional<Shelf> shelfFromId(std::string_view id);
// Only the IDs shelf is private by itself.
inline bool shelfIsSensitive(Shelf s) { return s == Shelf::ids; }

// The kind of private number found in a screenshot.
enum class SensitiveKind { cardNumber, nationalID, taxID, passport, bankAccount };

inline constexpr std::array<SensitiveKind, 5> allSensitiveKinds = {
    SensitiveKind::cardNumber, SensitiveKind::nationalID, SensitiveKind::taxID,
    SensitiveKind::passport, SensitiveKind::bankAccount};

using SensitiveKinds = std::set<SensitiveKind>;

// The raw value ("cardNumber", …).
std::string_view sensitiveKindId(SensitiveKind k);
// The display title ("Card number", …).
std::string_view sensitiveKindTitle(SensitiveKind k);
// The kind with exactly this raw value, or nothing.
std::optional<SensitiveKind> sensitiveKindFromId(std::string_view id);

} // namespace lumivale
