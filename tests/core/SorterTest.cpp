#include "core/Sorter.h"

#include "core/Sensitive.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;

TEST(Sorter, BoardingPassScoresItsKeywordsAndAirportPair) {
    const Verdict v = Sorter::sort({"Boarding Pass", "DEL → BOM", "Gate 22", "Seat 14C"}, {});
    // " boarding pass " 6 + " boarding " 3 + " gate " 2 + " seat " 2 + 4.0 for the pair.
    EXPECT_DOUBLE_EQ(v.scores.at(Shelf::tickets), 17.0);
    EXPECT_EQ(v.category, Shelf::tickets);
    EXPECT_DOUBLE_EQ(v.confidence, 1.0);
    EXPECT_TRUE(v.flags.empty());
}

TEST(Sorter, ConfidenceFromTheTopScoreAndItsLead) {
    const struct {
        const char* name;
        Lines lines;
        Shelf category;
        double top;
        double confidence;
    } cases[] = {
        // irctc 5 + itinerary 4 + bookmyshow 5, nothing else.
        {"fourteen alone", {"IRCTC itinerary", "BookMyShow"}, Shelf::tickets, 14, 1.0},
        // itinerary 4 + reservation 3 against invoice 4 + cashier 3; bills wins the tie.
        {"seven against seven",
         {"itinerary reservation", "invoice cashier"},
         Shelf::bills,
         7,
         0.175},
        {"four against four", {"itinerary invoice hello"}, Shelf::bills, 4, 0.1},
        // seen 1.5 + online 1.5 + today 1: exactly the threshold passes.
        {"exactly four",
         {"seen online today"},
         Shelf::chats,
         4,
         0.35 * 4 / 14 + 0.15 + 0.65 * 4 / 14},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict v = Sorter::sort(c.lines, {});
        EXPECT_EQ(v.category, c.category);
        EXPECT_DOUBLE_EQ(v.scores.at(c.category), c.top);
        EXPECT_NEAR(v.confidence, c.confidence, 1e-12);
    }
}

TEST(Sorter, WeakOrTinyReadingsFallBackToOther) {
    const struct {
        const char* name;
        Lines lines;
        Shelf strongest;
        double score;
    } cases[] = {
        // func 3 + three identifiers at 0.3 each.
        {"top of 3.9", {"func userName maxCount isOpen"}, Shelf::code, 3.9},
        // irctc 5 + bookmyshow 5, but only two words.
        {"two words", {"IRCTC", "BookMyShow"}, Shelf::tickets, 10.0},
        {"nothing", {}, Shelf::ids, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict v = Sorter::sort(c.lines, {});
        EXPECT_EQ(v.category, Shelf::other);
        EXPECT_EQ(v.confidence, 0.0);
        // The scores are kept even so.
        EXPECT_NEAR(v.scores.at(c.strongest), c.score, 1e-9);
    }
}

TEST(Sorter, TiesGoToTheShelfWhoseNameSortsFirst) {
    const struct {
        const char* name;
        Lines lines;
        Shelf winner, loser;
    } cases[] = {
        // invoice 4 + cashier 3 against wishlist 4 + mrp 3.
        {"bills before shopping", {"invoice cashier wishlist mrp"}, Shelf::bills, Shelf::shopping},
        // directions 4 + route 3 against traceback 4 + void 3.
        {"code before maps", {"directions route traceback void"}, Shelf::code, Shelf::maps},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict v = Sorter::sort(c.lines, {});
        EXPECT_EQ(v.scores.at(c.winner), v.scores.at(c.loser));
        EXPECT_EQ(v.category, c.winner);
    }
}

TEST(Sorter, KeywordsCountOnceAndOnlyAsWholeWords) {
    const struct {
        const char* name;
        Lines lines;
        Shelf shelf;
        double score;
    } cases[] = {
        {"eta inside beta", {"Beta version directions"}, Shelf::maps, 4},
        {"eta on its own", {"ETA 5:10 directions"}, Shelf::maps, 6},
        {"repeated keyword", {"invoice invoice", "INVOICE"}, Shelf::bills, 4},
        {"to weighs nothing", {"to to to"}, Shelf::bills, 0},
        {"across lines", {"Tax", "Invoice"}, Shelf::bills, 4 + 4 + 1},
        {"accents and width", {"ＲＥＣＥＩＰＴ", "Café Total"}, Shelf::bills, 4 + 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_DOUBLE_EQ(Sorter::sort(c.lines, {}).scores.at(c.shelf), c.score);
    }
}

TEST(Sorter, LayoutAddsToTheScores) {
    const Lines chat = {"hey", "9:41", "you there?", "10:02", "yes", "10:03"};
    EXPECT_DOUBLE_EQ(Sorter::sort(chat, {}).scores.at(Shelf::chats), 4.5 + 2.0 + 0.5);

    // Five amounts: bills gains 6.0 (7.5 capped), shopping 1.0 for having any.
    const Verdict money = Sorter::sort({"₹1.00 ₹2.00 ₹3.00 ₹4.00 ₹5.00"}, {});
    EXPECT_DOUBLE_EQ(money.scores.at(Shelf::bills), 6.0);
    EXPECT_DOUBLE_EQ(money.scores.at(Shelf::shopping), 1.0);

    EXPECT_DOUBLE_EQ(Sorter::sort({"Flat 50% off"}, {}).scores.at(Shelf::shopping), 3.0 + 1.0);

    // Four durations count 3; four distances count 3.
    const Verdict trip = Sorter::sort({"5 min 6 min 7 min 8 min", "1 km 2 km 3 km 4 km"}, {});
    EXPECT_DOUBLE_EQ(trip.scores.at(Shelf::maps), 6.0);
}

TEST(Sorter, BarcodesSpeakForTickets) {
    const Lines words = {"nothing much here"};
    const struct {
        const char* name;
        std::vector<std::string> barcodes;
        double tickets, bills;
    } cases[] = {
        {"pdf417 and qr", {"PDF417", "QR"}, 6.0, 0},
        {"aztec twice", {"Aztec", "Aztec"}, 6.0, 0},
        {"qr", {"QR"}, 1.5, 0.5},
        {"others", {"Barcode", "DataMatrix"}, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict v = Sorter::sort(words, c.barcodes);
        EXPECT_DOUBLE_EQ(v.scores.at(Shelf::tickets), c.tickets);
        EXPECT_DOUBLE_EQ(v.scores.at(Shelf::bills), c.bills);
    }
}

TEST(Sorter, PrivateNumbersSpeakForIds) {
    const std::string aadhaar = "2345 6789 0124";
    const struct {
        const char* name;
        Lines lines;
        SensitiveKinds flags;
        double ids;
    } cases[] = {
        {"id and card",
         {aadhaar, "4111 1111 1111 1111"}, {SensitiveKind::nationalID, SensitiveKind::cardNumber},
         11.0},
        {"tax id and passport count once",
         {"ABCPE1234F", "Passport Z1234567"}, {SensitiveKind::taxID, SensitiveKind::passport},
         8.0 + 4.0},
        {"bank account adds nothing",
         {"GB82 WEST 1234 5698 7654 32"}, {SensitiveKind::bankAccount},
         0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict v = Sorter::sort(c.lines, {});
        EXPECT_EQ(v.flags, c.flags);
        EXPECT_DOUBLE_EQ(v.scores.at(Shelf::ids), c.ids);
    }
}

TEST(Sorter, MadeUpScreenshotsLandOnTheirShelves) {
    const Lines receipt = {
        "Brew & Bloom Café",     "12 Residency Road, Bengaluru", "TAX INVOICE",
        "Bill No. 4471",         "12 Oct 2026 8:42 PM",          "Cappuccino x2 ₹360.00",
        "Subtotal ₹900.00",      "Grand Total ₹1,008.00",        "Paid by UPI · INR",
        "GSTIN 29ABCDE1234F1Z5", "Thank you! Visit again"};
    const Verdict bill = Sorter::sort(receipt, {});
    EXPECT_EQ(bill.category, Shelf::bills);
    // The GSTIN holds a PAN-shaped run, but glued to the state code it is no tax ID.
    EXPECT_TRUE(bill.flags.empty());
}

Reading readingOf(Lines texts, std::vector<std::string> barcodes = {}) {
    Reading r;
    for (size_t i = 0; i < texts.size(); ++i)
        r.lines.push_back({texts[i], 0.1f, 0.9f - 0.1f * static_cast<float>(i), 0.5f, 0.05f});
    r.barcodes = std::move(barcodes);
    r.pixelWidth = 1170;
    r.pixelHeight = 2532;
    return r;
}

TEST(Sorter, ApplyWritesTheReadingAndVerdictButKeepsTheHandPickedShelf) {
    Shot shot("/home/u/Pictures/Screenshots/Screenshot 2026-10-12.png", 1000, Date{}, Date{});
    shot.manual = Shelf::tickets;
    shot.readAt = Date{} + std::chrono::seconds(5);
    const Reading reading = readingOf({"TAX INVOICE", "Grand Total ₹1,008.00"}, {"QR"});
    Sorter::apply(reading, shot);

    EXPECT_EQ(shot.lines, reading.lines);
    EXPECT_EQ(shot.barcodes, reading.barcodes);
    EXPECT_EQ(shot.pixelWidth, 1170);
    EXPECT_EQ(shot.folded, searchTextOf(reading.lines, shot.name()));
    EXPECT_EQ(shot.guess, Shelf::bills);
    EXPECT_GT(shot.guessScore, 0.0);
    EXPECT_EQ(shot.reader, readerVersion);
    EXPECT_EQ(shot.manual, Shelf::tickets);
    EXPECT_EQ(shot.readAt, Date{} + std::chrono::seconds(5));
}

TEST(Sorter, ApplyingAFailedReadingClearsTheOldOne) {
    Shot shot("/tmp/a.png", 10, Date{}, Date{});
    Sorter::apply(readingOf({"Boarding Pass", "DEL → BOM", "Gate 22"}), shot);
    ASSERT_EQ(shot.guess, Shelf::tickets);

    Reading failed;
    failed.failed = true;
    failed.barcodes = {"Aztec"};
    Sorter::apply(failed, shot);
    EXPECT_TRUE(shot.lines.empty());
    EXPECT_TRUE(shot.failed);
    EXPECT_EQ(shot.guess, Shelf::other);
    EXPECT_EQ(shot.guessScore, 0.0);
    EXPECT_EQ(shot.folded, "\na.png");
}

TEST(Sorter, BrokenTextIsSortedWithoutHarm) {
    // Text from a damaged file or a reader fault: stray bytes that are not UTF-8.
    const Lines broken = {"Boarding\xff Pass", "\xe0\xa4", "Gate \xc3 22", "Seat 14C\x80"};
    EXPECT_GE(Sorter::sort(broken, {}).scores.at(Shelf::tickets), 4.0); // "gate", "seat" count
}

} // namespace
