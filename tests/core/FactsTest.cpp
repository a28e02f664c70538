#include "core/Facts.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;
using enum Shelf;

TEST(Facts, TotalOfABill) {
    const struct {
        Lines lines;
        std::optional<std::string> total;
    } cases[] = {
        // The last total line wins over the subtotal.
        {{"Cappuccino ₹360.00", "Subtotal ₹900.00", "Total ₹1,062.00"}, "₹1,062.00"},
        // A grand total above a paid line without an amount.
        {{"Subtotal ₹900.00", "Grand Total ₹1,008.00", "Paid by UPI · INR",
          "GSTIN 29ABCDE1234F1Z5"},
         "₹1,008.00"},
        {{"Tea 40.00", "Subtotal 900.00", "Tip 1,250.00"}, "1,250.00"}, // else the largest amount
        {{"Total", "₹499 ₹20", "Delivery ₹1,500.00"}, "₹499"}, // the first amount of the next line
        // "Subtotal" holds no whole word "total", but a subtotal line can hold "amount".
        {{"Subtotal amount ₹900.00", "Tip ₹1,250.00"}, "₹1,250.00"},
        {{"₹1,299.00 here", "₹1299.00 there"}, "₹1,299.00"}, // equal values: the first wins
        {{"Repaid ₹8.00", "Totalled ₹3.00"}, "₹8.00"},       // labels are whole words
        {{"no money here"}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines.front());
        EXPECT_EQ(Facts::total(c.lines), c.total);
    }
}

TEST(Facts, FactsDependOnTheShelf) {
    const struct {
        Lines lines;
        Shelf guess;
        std::vector<Fact> facts;
        std::optional<Shelf> manual = std::nullopt;
        SensitiveKinds flags = {};
    } cases[] = {
        {{"Boarding Pass", "PNR: ab12cd", "Flight 6E 2345", "12 Oct 2026"},
         tickets,
         {{"PNR", "ab12cd"}, {"Flight", "6E 2345"}, {"Date", "12 Oct 2026"}}},
        {{"Booking ID: HX-48213", "Hotel Lakeview"}, tickets, {{"Booking", "HX-48213"}}},
        {{"Booking ID: HX-48213", "PNR No. 4521789630"}, tickets, {{"PNR", "4521789630"}}},
        {{"Indigo 6E 2345", "Gate 4"}, tickets, {}}, // no flight without the word
        {{"BOARDING", "AI302"}, tickets, {{"Flight", "AI302"}}},
        {{"Paid to Brew & Bloom", "₹1,008.00", "UPI Ref No. 412345678901", "Oct 12, 2026"},
         bills,
         {{"Total", "₹1,008.00"}, {"Reference", "412345678901"}, {"Date", "Oct 12, 2026"}}},
        {{"Total ₹2,499.00", "Buy now"}, shopping, {{"Total", "₹2,499.00"}}},
        {{"Total ₹5.00", "PNR: ABC123", "12/03/2024"}, other, {{"Date", "12/03/2024"}}},
        {{"PNR: ABC123", "Total ₹5.00"}, tickets, {{"Total", "₹5.00"}}, bills}, // hand-picked
        {{"Issued 3rd March 2025 at noon"}, other, {{"Date", "3rd March 2025"}}},
        {{"Sept 9, 2024"}, other, {{"Date", "Sept 9, 2024"}}},
        {{"due 2024-03-12"}, other, {{"Date", "2024-03-12"}}},
        {{"on 1.2.24 and 5/6/2025"}, other, {{"Date", "1.2.24"}}},
        {{"Holder"},
         ids,
         {{"Holds", "Bank account, Card number, ID number, Passport, Tax ID"}},
         std::nullopt,
         {allSensitiveKinds.begin(), allSensitiveKinds.end()}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines.front());
        Shot shot("/tmp/shot.png", 1, Date{}, Date{});
        for (const std::string& t : c.lines)
            shot.lines.push_back({t, 0, 0, 1, 0.05f});
        shot.guess = c.guess;
        shot.manual = c.manual;
        shot.flags = c.flags;
        EXPECT_EQ(Facts::of(shot), c.facts);
    }
}

} // namespace
