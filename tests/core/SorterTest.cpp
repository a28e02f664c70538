#include "core/Sorter.h"

#include "core/Sensitive.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;

// Worked examples: the comments add up the scores; a confidence below zero is not checked.
TEST(Sorter, PicksTheShelfAndItsConfidence) {
    const struct {
        const char* name;
        Lines lines;
        Shelf category, scored;
        double score, confidence;
    } cases[] = {
        // " boarding pass " 6 + " boarding " 3 + " gate " 2 + " seat " 2 + 4.0 for the pair.
        {"boarding pass",
         {"Boarding Pass", "DEL → BOM", "Gate 22", "Seat 14C"},
         Shelf::tickets,
         Shelf::tickets,
         17,
         1.0},
        // irctc 5 + itinerary 4 + bookmyshow 5, nothing else.
        {"fourteen alone",
         {"IRCTC itinerary", "BookMyShow"},
         Shelf::tickets,
         Shelf::tickets,
         14,
         1.0},
        // itinerary 4 + reservation 3 against invoice 4 + cashier 3; bills wins the tie.
        {"seven against seven",
         {"itinerary reservation", "invoice cashier"},
         Shelf::bills,
         Shelf::bills,
         7,
         0.175},
        {"four against four", {"itinerary invoice hello"}, Shelf::bills, Shelf::bills, 4, 0.1},
        // seen 1.5 + online 1.5 + today 1: exactly the threshold passes.
        {"exactly four",
         {"seen online today"},
         Shelf::chats,
         Shelf::chats,
         4,
         0.35 * 4 / 14 + 0.15 + 0.65 * 4 / 14},
        // func 3 + three identifiers at 0.3 each; the scores are kept even so.
        {"top of 3.9", {"func userName maxCount isOpen"}, Shelf::other, Shelf::code, 3.9, 0},
        // irctc 5 + bookmyshow 5, but only two words.
        {"two words", {"IRCTC", "BookMyShow"}, Shelf::other, Shelf::tickets, 10, 0},
        // Ties go to the shelf whose name sorts first: wishlist 4 + mrp 3 tie with bills.
        {"bills before shopping",
         {"invoice cashier wishlist mrp"},
         Shelf::bills,
         Shelf::shopping,
         7,
         -1},
        // traceback 4 + void 3 against directions 4 + route 3.
        {"code before maps", {"directions route traceback void"}, Shelf::code, Shelf::maps, 7, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Verdict v = Sorter::sort(c.lines, {});
        EXPECT_EQ(v.category, c.category);
        EXPECT_NEAR(v.scores.at(c.scored), c.score, 1e-9);
        if (c.confidence >= 0) {
            EXPECT_NEAR(v.confidence, c.confidence, 1e-12);
        }
        if (c.category != Shelf::other) {
            EXPECT_NEAR(v.scores.at(c.category), c.score, 1e-9);
        }
    }
}

TEST(Sorter, ScoresKeywordsLayoutAndBarcodes) {
    const Lines words = {"nothing much here"};
    const struct {
        const char* name;
        Lines lines;
        std::vector<std::string> barcodes;
        Shelf shelf;
        double score;
    } cases[] = {
        {"eta inside beta", {"Beta version directions"}, {}, Shelf::maps, 4},
        {"eta on its own", {"ETA 5:10 directions"}, {}, Shelf::maps, 6},
        {"a keyword counts once", {"invoice invoice", "INVOICE"}, {}, Shelf::bills, 4},
        {"to weighs nothing", {"to to to"}, {}, Shelf::bills, 0},
        {"across lines", {"Tax", "Invoice"}, {}, Shelf::bills, 4 + 4 + 1},
        {"accents and width", {"ＲＥＣＥＩＰＴ", "Café Total"}, {}, Shelf::bills, 4 + 2},
        {"chat layout",
         {"hey", "9:41", "you there?", "10:02", "yes", "10:03"},
         {},
         Shelf::chats,
         4.5 + 2.0 + 0.5},
        // Five amounts: bills gains 6.0 (7.5 capped), shopping 1.0 for having any.
        {"amounts for bills", {"₹1.00 ₹2.00 ₹3.00 ₹4.00 ₹5.00"}, {}, Shelf::bills, 6},
        {"amounts for shopping", {"₹1.00 ₹2.00 ₹3.00 ₹4.00 ₹5.00"}, {}, Shelf::shopping, 1},
        {"percent off", {"Flat 50% off"}, {}, Shelf::shopping, 3.0 + 1.0},
        {"durations and distances",
         {"5 min 6 min 7 min 8 min", "1 km 2 km 3 km 4 km"},
         {},
         Shelf::maps,
         6},
        {"pdf417 and qr", words, {"PDF417", "QR"}, Shelf::tickets, 6},
        {"aztec twice", words, {"Aztec", "Aztec"}, Shelf::tickets, 6},
        {"qr for tickets", words, {"QR"}, Shelf::tickets, 1.5},
        {"qr for bills", words, {"QR"}, Shelf::bills, 0.5},
        {"other barcodes", words, {"Barcode", "DataMatrix"}, Shelf::tickets, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_DOUBLE_EQ(Sorter::sort(c.lines, c.barcodes).scores.at(c.shelf), c.score);
    }
    // Stray bytes that are not UTF-8 do no harm: "gate" and "seat" still count.
    const Lines broken = {"Boarding\xff Pass", "\xe0\xa4", "Gate \xc3 22", "Seat 14C\x80"};
    EXPECT_GE(Sorter::sort(broken, {}).scores.at(Shelf::tickets), 4.0);
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
         {aadhaar, "4111 1111 1111 1111"},
         {SensitiveKind::nationalID, SensitiveKind::cardNumber},
         11.0},
        {"tax id and passport count once",
         {"ABCPE1234F", "Passport Z1234567"},
         {SensitiveKind::taxID, SensitiveKind::passport},
         8.0 + 4.0},
        {"bank account adds nothing",
         {"GB82 WEST 1234 5698 7654 32"},
         {SensitiveKind::bankAccount},
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

} // namespace
