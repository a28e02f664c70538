#include "core/Keywords.h"

#include "core/Characters.h"
#include "core/Fold.h"

namespace lumivale {

namespace Keywords {

const KeywordTable& raw() {
    // The table is uneven on purpose: a word may speak for two shelves ("class"), and " to "
    // stands under bills with no weight at all. Keep it exactly as it is.
    // clang-format off
    static const KeywordTable keywords = {
        {Shelf::ids, {
            {"identity card", 5}, {"id card", 4}, {"aadhaar", 5}, {"aadhar", 5}, {"uidai", 5},
            {"unique identification", 4}, {"permanent account number", 5},
            {"income tax department", 5}, {"passport", 4}, {"passport no", 5},
            {"driving licence", 5}, {"driving license", 5}, {"driver license", 5},
            {"driver's license", 5}, {"residence permit", 5}, {"national identity", 5},
            {"voter id", 5}, {"election commission", 5}, {"social security", 5},
            {"date of birth", 4}, {"government of india", 4}, {"republic of", 2},
            {"nationality", 3}, {"place of birth", 4}, {"date of issue", 3}, {"date of expiry", 3},
            {"issuing authority", 4}, {"given name", 3}, {"given names", 3}, {"surname", 2},
            {"dob", 2}, {"sex", 1.5}, {"gender", 1.5}, {"blood group", 2}, {"valid until", 1.5},
            {"valid till", 1.5}, {"holder", 1.5}, {"signature", 1.5}, {"licence no", 3},
            {"license no", 3}, {"id no", 2}, {"card no", 1}, {"insurance card", 3},
            {"member id", 2}, {"policy number", 2}, {"certificate", 2}, {"enrolment", 2},
            {"personalausweis", 5}, {"reisepass", 5}, {"carte nationale", 5},
            {"permis de conduire", 5}, {"documento nacional", 5}, {"father", 1}, {"आधार", 5},
            {"भारत सरकार", 4}, {"जन्म तिथि", 4}
        }},
        {Shelf::bills, {
            {"invoice", 4}, {"tax invoice", 4}, {"receipt", 4}, {"subtotal", 4}, {"sub total", 4},
            {"grand total", 4}, {"total amount", 3}, {"amount paid", 4}, {"amount due", 4},
            {"balance due", 4}, {"bill amount", 4}, {"bill no", 3}, {"bill number", 3},
            {"receipt no", 3}, {"gst", 2}, {"gstin", 3}, {"cgst", 3}, {"sgst", 3}, {"igst", 3},
            {"vat", 2}, {"payment successful", 4}, {"payment received", 4},
            {"paid successfully", 4}, {"paid to", 3}, {"transaction id", 3}, {"txn id", 3},
            {"utr", 3}, {"upi ref", 4}, {"upi transaction", 4}, {"debited", 3}, {"credited", 2},
            {"statement", 2}, {"electricity", 3}, {"due date", 3}, {"late fee", 3},
            {"service charge", 3}, {"cashier", 3}, {"change due", 3}, {"round off", 3},
            {"net amount", 2}, {"total", 2}, {"amount", 1.5}, {"tax", 1}, {"paid", 1.5},
            {"payment", 1.5}, {"upi", 2}, {"card ending", 2}, {"bank", 1}, {"google pay", 2},
            {"gpay", 2}, {"phonepe", 2}, {"paytm", 2}, {"discount", 1}, {"bill", 1.5},
            {"rate", 0.5}, {"thank you for your payment", 4}, {"from", 0.5}, {"to", 0}
        }},
        {Shelf::tickets, {
            {"boarding pass", 6}, {"e ticket", 5}, {"eticket", 5}, {"pnr", 5}, {"booking id", 4},
            {"booking reference", 5}, {"booking confirmed", 5}, {"confirmation number", 4},
            {"reservation", 3}, {"itinerary", 4}, {"irctc", 5}, {"admit one", 5}, {"bookmyshow", 5},
            {"showtime", 4}, {"berth", 4}, {"ticket", 3}, {"tickets", 3}, {"departure", 2.5},
            {"arrival", 2}, {"depart", 2}, {"gate", 2}, {"seat", 2}, {"terminal", 2},
            {"flight", 2.5}, {"train", 2}, {"coach", 1.5}, {"platform", 1.5}, {"passenger", 2.5},
            {"venue", 2}, {"hotel", 2}, {"check in", 2}, {"check out", 1.5}, {"nights", 1.5},
            {"guest", 1}, {"row", 1}, {"screen", 1}, {"event", 1}, {"class", 1}, {"bus", 1},
            {"trip", 1}, {"booking", 2}, {"booked", 2}, {"journey", 2}, {"airline", 2},
            {"airlines", 3}, {"airways", 3}, {"boarding", 3}, {"zone", 0.5}, {"audi", 1}
        }},
        {Shelf::chats, {
            {"delivered", 2}, {"seen", 1.5}, {"typing", 3}, {"online", 1.5}, {"last seen", 4},
            {"imessage", 4}, {"text message", 3}, {"whatsapp", 4}, {"telegram", 3},
            {"messenger", 3}, {"message", 1.5}, {"reply", 1}, {"replied", 2}, {"today", 1},
            {"yesterday", 1.5}, {"forwarded", 3}, {"voice message", 3}, {"missed call", 2},
            {"end to end encrypted", 4}, {"edited", 1}, {"lol", 2}, {"haha", 2}, {"thanks", 0.5},
            {"ok", 0.5}
        }},
        {Shelf::code, {
            {"func", 3}, {"def", 3}, {"import", 2}, {"return", 2}, {"const", 3}, {"let", 1},
            {"var", 1}, {"public", 1}, {"private", 2}, {"static", 2}, {"void", 3}, {"struct", 3},
            {"enum", 2}, {"async", 2}, {"await", 2}, {"function", 2}, {"println", 3}, {"printf", 3},
            {"console log", 3}, {"npm", 3}, {"git", 2}, {"commit", 1.5}, {"exception", 2},
            {"traceback", 4}, {"stack trace", 3}, {"undefined", 2}, {"null", 2}, {"nil", 2},
            {"true", 1}, {"false", 1}, {"self", 1}, {"bool", 2}, {"json", 2}, {"localhost", 3},
            {"sudo", 3}, {"brew", 3}, {"pip", 2}, {"xcode", 3}, {"swift", 2}, {"python", 2},
            {"javascript", 2}, {"typescript", 3}, {"elif", 4}, {"impl", 3}, {"std", 2},
            {"error", 1}, {"int", 1}, {"string", 1}, {"class", 1}
        }},
        {Shelf::shopping, {
            {"add to cart", 5}, {"add to bag", 5}, {"add to basket", 5}, {"buy now", 5},
            {"wishlist", 4}, {"in stock", 4}, {"out of stock", 4}, {"free delivery", 4},
            {"delivery by", 3}, {"deliver to", 3}, {"sold by", 4}, {"mrp", 3},
            {"inclusive of all taxes", 4}, {"select size", 4}, {"size", 1}, {"colour", 1},
            {"color", 1}, {"quantity", 1.5}, {"ratings", 3}, {"customer reviews", 3},
            {"reviews", 2}, {"rating", 2}, {"cart", 3}, {"checkout", 2}, {"coupon", 2},
            {"amazon", 3}, {"flipkart", 4}, {"myntra", 4}, {"ajio", 4}, {"meesho", 4}, {"nykaa", 4},
            {"ebay", 3}, {"etsy", 3}, {"return policy", 3}, {"easy returns", 4}, {"returns", 1},
            {"bestseller", 3}, {"best seller", 3}, {"visit the", 2}, {"order placed", 3},
            {"track order", 3}, {"out for delivery", 3}, {"arriving", 2}, {"shipped", 2},
            {"price", 1.5}, {"offer", 1}, {"offers", 1}, {"off", 1}, {"brand", 1}, {"stars", 1}
        }},
        {Shelf::maps, {
            {"directions", 4}, {"route", 3}, {"routes", 3}, {"navigate", 3}, {"navigation", 3},
            {"fastest route", 5}, {"traffic", 2}, {"via", 2}, {"eta", 2}, {"destination", 3},
            {"your location", 4}, {"current location", 4}, {"choose destination", 5}, {"nearby", 2},
            {"open now", 3}, {"opens", 2}, {"closes", 2}, {"walk", 2}, {"drive", 2}, {"transit", 3},
            {"cycling", 2}, {"google maps", 5}, {"apple maps", 5}, {"maps", 3},
            {"share location", 4}, {"street", 1}, {"road", 1}, {"rd", 1}, {"avenue", 1},
            {"lane", 1}, {"marg", 2}, {"nagar", 1}, {"highway", 2}, {"exit", 1}, {"parking", 1},
            {"away", 1}, {"start", 1}, {"explore", 1}, {"arrive", 1}
        }},
        {Shelf::other, {}},
    };
    // clang-format on
    return keywords;
}

const KeywordTable& table() {
    static const KeywordTable normalised = [] {
        KeywordTable t;
        for (const auto& [shelf, keywords] : raw()) {
            std::vector<Keyword>& list = t[shelf];
            for (const Keyword& k : keywords)
                list.push_back({wordText(k.text), k.weight});
        }
        return t;
    }();
    return normalised;
}

} // namespace Keywords

std::string wordText(std::string_view s) {
    const std::string folded = foldText(s);
    const std::vector<size_t> bounds = characterBounds(folded);
    std::string out = " ";
    out.reserve(folded.size() + 2);
    for (size_t k = 0; k + 1 < bounds.size(); ++k) {
        const std::string_view character(folded.data() + bounds[k], bounds[k + 1] - bounds[k]);
        if (isLetterCharacter(character) || isNumberCharacter(character))
            out += character;
        else if (out.back() != ' ')
            out += ' ';
    }
    if (out.back() != ' ') out += ' ';
    return out;
}

} // namespace lumivale
