#include "core/Shelf.h"

namespace lumivale {
namespace {

struct ShelfInfo {
    std::string_view id, title, shortName, symbol, folderName;
};

constexpr std::array<ShelfInfo, 8> shelfInfo = {{
    {"ids", "IDs & documents", "ID", "person.text.rectangle", "IDs and documents"},
    {"bills", "Bills & receipts", "Bill", "receipt", "Bills and receipts"},
    {"tickets", "Tickets & bookings", "Ticket", "ticket", "Tickets and bookings"},
    {"chats", "Chats", "Chat", "bubble.left.and.bubble.right", "Chats"},
    {"code", "Code", "Code", "chevron.left.forwardslash.chevron.right", "Code"},
    {"shopping", "Shopping", "Shop", "bag", "Shopping"},
    {"maps", "Maps & places", "Map", "map", "Maps and places"},
    {"other", "Everything else", "Other", "square.dashed", "Other"},
}};

constexpr std::array<std::string_view, 5> kindIds = {"cardNumber", "nationalID", "taxID", "passport",
                                                     "bankAccount"};
constexpr std::array<std::string_view, 5> kindTitles = {"Card number", "ID number", "Tax ID",
                                                        "Passport", "Bank account"};

const ShelfInfo& info(Shelf s) { return shelfInfo[static_cast<size_t>(s)]; }

} // namespace

std::string_view shelfId(Shelf s) { return info(s).id; }
std::string_view shelfTitle(Shelf s) { return info(s).title; }
std::string_view shelfShort(Shelf s) { return info(s).shortName; }
std::string_view shelfSymbol(Shelf s) { return info(s).symbol; }
std::string_view shelfFolderName(Shelf s) { return info(s).folderName; }

std::optional<Shelf> shelfFromId(std::string_view id) {
    for (Shelf s : allShelves)
        if (shelfId(s) == id)
            return s;
    return std::nullopt;
}

std::string_view sensitiveKindId(SensitiveKind k) { return kindIds[static_cast<size_t>(k)]; }
std::string_view sensitiveKindTitle(SensitiveKind k) { return kindTitles[static_cast<size_t>(k)]; }

std::optional<SensitiveKind> sensitiveKindFromId(std::string_view id) {
    for (SensitiveKind k : allSensitiveKinds)
        if (sensitiveKindId(k) == id)
            return k;
    return std::nullopt;
}

} // namespace lumivale
