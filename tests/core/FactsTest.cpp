#include "core/Facts.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;
using FactList = std::vector<Fact>;

Shot shotOf(const Lines& texts, Shelf guess, std::optional<Shelf> manual = std::nullopt,
            SensitiveKinds flags = {}) {
    Shot shot("/tmp/shot.png", 1, Date{}, Date{});
    for (const std::string& t : texts)
        shot.lines.push_back({t, 0, 0, 1, 0.05f});
    shot.guess = guess;
    shot.manual = manual;
    shot.flags = std::move(flags);
    return shot;
}

TEST(Facts, TotalOfABill) {
    const struct {
        const char* name;
        Lines lines;
        std::optional<std::string> total;
    } cases[] = {
        {"last total line wins over the subtotal",
         {"Cappuccino ₹360.00", "Subtotal ₹900.00", "Total ₹1,062.00"},
         "₹1,062.00"},
        {"grand total above a paid line without an amount",
         {"Subtotal ₹900.00", "Grand Total ₹1,008.00", "Paid by UPI · INR",
          "GSTIN 29ABCDE1234F1Z5"},
         "₹1,008.00"},
        {"only a subtotal: the largest amount anywhere",
         {"Tea 40.00", "Subtotal 900.00", "Tip 1,250.00"},
         "1,250.00"},
        {"amount on the next line", {"Total", "₹499", "Delivery ₹1,500.00"}, "₹499"},
        // "Subtotal" holds no whole word "total", but a subtotal line can hold "amount".
        {"subtotal line is skipped", {"Subtotal amount ₹900.00", "Tip ₹1,250.00"}, "₹1,250.00"},
        {"a total line without amounts on either side falls through",
         {"Total due soon", "see you", "₹7.00 ₹9.00"},
         "₹9.00"},
        {"equal values: the first wins", {"₹1,299.00 here", "₹1299.00 there"}, "₹1,299.00"},
        {"label must be a whole word", {"Totalled ₹3.00", "Repaid ₹8.00"}, "₹8.00"},
        {"nothing", {"no money here"}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Facts::total(c.lines), c.total);
    }
}

TEST(Facts, FactsDependOnTheShelf) {
    const struct {
        const char* name;
        Shot shot;
        FactList facts;
    } cases[] = {
        {"ticket with pnr, flight and date",
         shotOf({"Boarding Pass", "PNR: ab12cd", "Flight 6E 2345", "12 Oct 2026"}, Shelf::tickets),
         {{"PNR", "ab12cd"}, {"Flight", "6E 2345"}, {"Date", "12 Oct 2026"}}},
        {"booking when there is no pnr",
         shotOf({"Booking ID: HX-48213", "Hotel Lakeview"}, Shelf::tickets),
         {{"Booking", "HX-48213"}}},
        {"pnr wins over booking",
         shotOf({"Booking ID: HX-48213", "PNR No. 4521789630"}, Shelf::tickets),
         {{"PNR", "4521789630"}}},
        {"no flight without the word", shotOf({"Indigo 6E 2345", "Gate 4"}, Shelf::tickets), {}},
        {"boarding is word enough",
         shotOf({"BOARDING", "AI302"}, Shelf::tickets),
         {{"Flight", "AI302"}}},
        {"bill with total and reference",
         shotOf({"Paid to Brew & Bloom", "₹1,008.00", "UPI Ref No. 412345678901", "Oct 12, 2026"},
                Shelf::bills),
         {{"Total", "₹1,008.00"}, {"Reference", "412345678901"}, {"Date", "Oct 12, 2026"}}},
        {"shopping gets the total too",
         shotOf({"Total ₹2,499.00", "Buy now"}, Shelf::shopping),
         {{"Total", "₹2,499.00"}}},
        {"other shows only the date",
         shotOf({"Total ₹5.00", "PNR: ABC123", "12/03/2024"}, Shelf::other),
         {{"Date", "12/03/2024"}}},
        {"the hand-picked shelf wins",
         shotOf({"PNR: ABC123", "Total ₹5.00"}, Shelf::tickets, Shelf::bills),
         {{"Total", "₹5.00"}}},
        {"holds every kind",
         shotOf({}, Shelf::ids, std::nullopt,
                {SensitiveKind::passport, SensitiveKind::taxID, SensitiveKind::nationalID,
                 SensitiveKind::cardNumber, SensitiveKind::bankAccount}),
         {{"Holds", "Bank account, Card number, ID number, Passport, Tax ID"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Facts::of(c.shot), c.facts);
    }
}

TEST(Facts, DatesInTheirUsualForms) {
    const struct {
        std::string text, date;
    } cases[] = {
        {"Issued 3rd March 2025 at noon", "3rd March 2025"},
        {"Sept 9, 2024", "Sept 9, 2024"},
        {"due 2024-03-12", "2024-03-12"},
        {"on 1.2.24 and 5/6/2025", "1.2.24"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Facts::of(shotOf({c.text}, Shelf::other)), (FactList{{"Date", c.date}}));
    }
}

} // namespace
