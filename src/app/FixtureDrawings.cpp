#include "app/FixtureDrawings.h"

#include <map>

namespace lumivale::FixtureDrawings {
namespace {

// The ID number as printed: in groups of four, as identity cards print it.
std::string groupedIdNumber() {
    const std::string& n = Fixtures::idNumber();
    return n.substr(0, 4) + " " + n.substr(4, 4) + " " + n.substr(8);
}

std::map<Fixture::Kind, Drawing> makeTable() {
    using K = Fixture::Kind;
    std::map<K, Drawing> t;
    t[K::idCard] = {760,
                    480,
                    0xE9ECEF,
                    idCard,
                    {"NATIONAL IDENTITY CARD", "SPECIMEN · NOT A REAL DOCUMENT", "Name",
                     groupedIdNumber(), "Holder's signature"}};
    t[K::passport] = {820,
                      540,
                      0xF1EEE6,
                      passport,
                      {"PASSPORT", "SPECIMEN · NOT A REAL DOCUMENT", "Passport No.",
                       "P<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<",
                       "Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02"}};
    t[K::receipt] = {620,
                     860,
                     0xF3F4F6,
                     receipt,
                     {"Brew & Bloom Café", "12 Residency Road, Bengaluru", "TAX INVOICE",
                      "Bill No. 4471", "12 Oct 2026  8:42 PM", "Cappuccino x2", "Subtotal",
                      "Grand Total", "₹1,008.00", "Paid by UPI · INR", "GSTIN 29ABCDE1234F1Z5",
                      "Thank you! Visit again"}};
    t[K::upiPayment] = {390,
                        844,
                        0xFFFFFF,
                        upiPayment,
                        {"7:15", "✓", "Payment Successful", "₹1,249.00",
                         "Paid to Green Grocer Mart", "Axis Savings ••4417", "17 Oct 2026, 7:15 PM",
                         "UPI Ref No.", "Done"}};
    t[K::hardwareReceipt] = {560,
                             760,
                             0xEDEDED,
                             hardwareReceipt,
                             {"CORNER HARDWARE CO.", "Receipt #20931", "09/26/2026  10:12 AM",
                              "WOOD SCREWS 50PK", "SUBTOTAL", "VISA ending 4417",
                              "CHANGE DUE $0.00", "CASHIER: ORLI", "THANK YOU"}};
    t[K::boardingPass] = {390,
                          844,
                          0xEEF2F7,
                          boardingPass,
                          {"5:52", "Boarding Pass", "Skyline Air", "BLR", "DEL", "Bengaluru",
                           "New Delhi", "Flight", "Passenger", "NELA DORAN", "K7Q2MX"}};
    t[K::trainTicket] = {900,
                         560,
                         0xF5F5F0,
                         trainTicket,
                         {"Rail e-Ticket", "Electronic Reservation Slip", "PNR 4521873690",
                          "Train 12627 · Karnataka Express", "From", "21 Oct 2026 19:20",
                          "23 Oct 2026 09:00", "Nela Doran, 35, F", "CNF / Coach B2 / Berth 34",
                          "Total fare ₹2,145.00"}};
    t[K::movieTicket] = {390,
                         844,
                         0x111018,
                         movieTicket,
                         {"6:58", "ADMIT ONE", "The Last Lighthouse", "English · 2h 14m",
                          "Showtime", "Sat, 25 Oct · 7:30 PM", "Orion Cinemas, Screen 3",
                          "Booking ID MX93K2"}};
    t[K::chat] = {390,
                  844,
                  0xFFFFFF,
                  chat,
                  {"9:41", "Tove", "online", "Are we still on for Saturday?",
                   "Yes! 7 pm at the usual place", "Can you send me the address?",
                   "Sure, sending it now", "Perfect, see you then", "Don't forget the tickets haha",
                   "Delivered", "Message"}};
    t[K::groupChat] = {900,
                       600,
                       0xFFFFFF,
                       groupChat,
                       {"Family", "Yesterday", "Nela", "Did everyone get home okay?",
                        "Yes, reached 10 min ago", "Good. Lunch on Sunday at ours?",
                        "I'm in! Shall I bring dessert?", "Typing a long reply... ok yes please"}};
    t[K::code] = {960,
                  600,
                  0x1E1F25,
                  code,
                  {"ContentView.swift", "import SwiftUI", "struct ContentView: View {",
                   "    @State private var count = 0", "    var body: some View {",
                   "        Button(\"Tapped \\(count) times\") {", "            count += 1",
                   "        .padding()"}};
    t[K::terminal] = {900,
                      520,
                      0x0C0C0C,
                      terminal,
                      {"zsh — ", "$ npm run build", "> web-app@1.4.0 build", "> tsc && vite build",
                       "src/index.ts:42:7 - error TS2322: Type 'string' is not",
                       "assignable to type 'number'.", "    const total: number = getTotal();",
                       "Found 1 error in src/index.ts:42", "On branch main"}};
    t[K::shopping] = {390,
                      844,
                      0xFFFFFF,
                      shopping,
                      {"1:24", "Linen Shirt, Relaxed Fit", "★★★★☆ 4.3 · 2,184 ratings", "₹1,299",
                       "MRP ₹2,499   48% off", "Inclusive of all taxes", "Select Size",
                       "Free delivery by Tue, 21 Oct · In stock", "Add to Cart", "Buy Now"}};
    t[K::map] = {390,
                 844,
                 0xF1EDE4,
                 map,
                 {"4:07", "Lalbagh Botanical Garden", "4.6 ★ · Park · Open now",
                  "18 min (6.2 km) via Hosur Rd", "Fastest route, light traffic", "Directions"}};
    t[K::recipe] = {820,
                    640,
                    0xFFFBF5,
                    recipe,
                    {"Masala Chai — Recipe", "Masala Chai", "Serves 2 · 10 minutes", "Ingredients",
                     "• 2 cups water and 1 cup milk", "• 2 teaspoons loose black tea",
                     "• 4 green cardamom pods, crushed", "• A small piece of fresh ginger",
                     "Method", "Simmer the water with the spices, add the tea, then the milk.",
                     "Bring it up twice, strain into cups and enjoy it hot."}};
    t[K::sunset] = {600, 400, 0xF6A04D, sunset, {}};
    return t;
}

} // namespace

const Drawing& of(Fixture::Kind kind) {
    static const std::map<Fixture::Kind, Drawing> table = makeTable();
    return table.at(kind);
}

} // namespace lumivale::FixtureDrawings
