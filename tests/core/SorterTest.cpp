#include "core/Sorter.h"

#include "core/Keywords.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;
using enum Shelf;

// Worked examples: the comments add up the scores; in a tie the confidence is that of a tie.
TEST(Sorter, PicksTheShelfAndItsConfidence) {
    const struct {
        Lines lines;
        Shelf category, scored;
        double score, confidence;
    } cases[] = {
        // " boarding pass " 6 + " boarding " 3 + " gate " 2 + " seat " 2 + 4.0 for the pair.
        {{"Boarding Pass", "DEL → BOM", "Gate 22", "Seat 14C"}, tickets, tickets, 17, 1.0},
        // irctc 5 + itinerary 4 + bookmyshow 5, nothing else.
        {{"IRCTC itinerary", "BookMyShow"}, tickets, tickets, 14, 1.0},
        // itinerary 4 + reservation 3 against invoice 4 + cashier 3; bills wins the tie.
        {{"itinerary reservation", "invoice cashier"}, bills, bills, 7, 0.175},
        // invoice 4 against "id card" 4: "bills" sorts before "ids".
        {{"invoice id card"}, bills, ids, 4, 0.1},
        // seen 1.5 + online 1.5 + today 1: exactly the threshold passes.
        {{"seen online today"}, chats, chats, 4, 0.35 * 4 / 14 + 0.15 + 0.65 * 4 / 14},
        // func 3 + three identifiers at 0.3 each, below the threshold; the scores are kept.
        {{"func userName maxCount isOpen"}, other, code, 3.9, 0},
        // irctc 5 + bookmyshow 5, but only two words.
        {{"IRCTC", "BookMyShow"}, other, tickets, 10, 0},
        // Ties go to the shelf whose name sorts first: wishlist 4 + mrp 3 tie with bills.
        {{"invoice cashier wishlist mrp"}, bills, shopping, 7, 0.175},
        // traceback 4 + void 3 against directions 4 + route 3.
        {{"directions route traceback void"}, code, maps, 7, 0.175},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines.front());
        const Verdict v = Sorter::sort(c.lines, {});
        EXPECT_EQ(v.category, c.category);
        EXPECT_NEAR(v.scores.at(c.scored), c.score, 1e-9);
        EXPECT_NEAR(v.confidence, c.confidence, 1e-12);
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
        {"eta inside beta", {"Beta version directions"}, {}, maps, 4},
        {"eta on its own", {"ETA 5:10 directions"}, {}, maps, 6},
        {"a keyword counts once", {"invoice invoice", "INVOICE"}, {}, bills, 4},
        {"across lines and marks", {"Tax —", "Invoice"}, {}, bills, 4 + 4 + 1},
        {"a curly apostrophe parts words", {"Driver’s License"}, {}, ids, 5},
        {"accents and width", {"ＲＥＣＥＩＰＴ", "Café Total"}, {}, bills, 4 + 2},
        {"chat layout", {"hey", "9:41", "you there?", "10:02", "yes", "10:03"}, {}, chats, 7},
        // Five amounts: bills gains 6.0 (7.5 capped), shopping 1.0 for having any.
        {"amounts for bills", {"₹1.00 ₹2.00 ₹3.00 ₹4.00 ₹5.00"}, {}, bills, 6},
        {"amounts for shopping", {"₹1.00 ₹2.00 ₹3.00 ₹4.00 ₹5.00"}, {}, shopping, 1},
        {"percent off", {"Flat 50% off"}, {}, shopping, 3.0 + 1.0},
        {"durations, distances", {"5 min 6 min", "1 km 2 km 3 km 4 km"}, {}, maps, 2 + 3},
        {"durations capped", {"5 min 6 min 7 min 8 min"}, {}, maps, 3},
        // An ID number, tax ID or passport adds 8 once, a card 3, a bank account nothing; and
        // "passport" is a keyword of 4.
        {"id and card", {"2345 6789 0124", "4111 1111 1111 1111"}, {}, ids, 11},
        {"tax id, passport", {"ABCPE1234F", "Passport Z1234567"}, {}, ids, 12},
        {"bank account", {"GB82 WEST 1234 5698 7654 32"}, {}, ids, 0},
        {"pdf417 and qr", words, {"PDF417", "QR"}, tickets, 6},
        {"aztec twice", words, {"Aztec", "Aztec"}, tickets, 6},
        {"qr for tickets", words, {"QR"}, tickets, 1.5},
        {"qr for bills", words, {"QR"}, bills, 0.5},
        {"other barcodes", words, {"Barcode", "DataMatrix"}, tickets, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_DOUBLE_EQ(Sorter::sort(c.lines, c.barcodes).scores.at(c.shelf), c.score);
    }
    // Stray bytes that are not UTF-8 do no harm: "gate" and "seat" still count.
    const Lines broken = {"Boarding\xff Pass", "\xe0\xa4", "Gate \xc3 22", "Seat 14C\x80"};
    EXPECT_GE(Sorter::sort(broken, {}).scores.at(tickets), 4.0);
}

// The lists are uneven on purpose; their lengths catch a keyword lost in an edit.
TEST(Sorter, EveryKeywordCountsForItsShelf) {
    const std::map<Shelf, size_t> lengths = {{ids, 56},  {bills, 58},    {tickets, 49}, {chats, 24},
                                             {code, 49}, {shopping, 50}, {maps, 39},    {other, 0}};
    for (const auto& [shelf, length] : lengths) {
        const std::vector<Keyword>& keywords = Keywords::raw().at(shelf);
        EXPECT_EQ(keywords.size(), length) << shelfId(shelf);
        for (const Keyword& k : keywords)
            EXPECT_GE(Sorter::sort({k.text}, {}).scores.at(shelf), k.weight) << k.text;
    }
}

// The rest of what a reading leaves in a shot, the shelf, flags and failure, show in the list.
TEST(Sorter, ApplyKeepsThePictureSizeAndTheGuessConfidence) {
    Shot shot("/p/a.png", 1000, Date{}, Date{});
    Reading reading;
    reading.lines = {{"TAX INVOICE"}, {"Grand Total ₹1,008.00"}};
    reading.pixelWidth = 1170;
    reading.pixelHeight = 2532;
    Sorter::apply(reading, shot);
    EXPECT_EQ(shot.pixelWidth, 1170);
    EXPECT_EQ(shot.pixelHeight, 2532);
    EXPECT_GT(shot.guessScore, 0.0);
}

} // namespace
