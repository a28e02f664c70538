#include "reading/MachineZone.h"

#include <gtest/gtest.h>

namespace lumivale {
namespace {

std::vector<TextLine> linesOf(const std::vector<std::string>& texts) {
    std::vector<TextLine> lines;
    for (const std::string& text : texts)
        lines.push_back(TextLine{text, 0, 0, 1, 0.02f});
    return lines;
}

TEST(MachineZoneTest, ZoneLinesAreToldFromText) {
    const struct {
        const char* text;
        bool zone;
    } cases[] = {
        {"I<UTOD231458907<<<<<<<<<<<<<<<", true},
        {"IDALP LK4R7T2V96 <<<<<<<<c<cc<<<", true},
        {"9403176F3403163ALP<<<<<<<<<<<8", true},
        {"P<INDDORAN<<NELA<<<<<<<<<<<<<<c<ccc#eeeeeeeec<", true},
        {"I<UTOD231458907<<<<<<<", false},                   // too short
        {"I<UTOD231458907ABCDEFGHIJKLMNOP", false},          // no fillers
        {"Please bring this page and your ID << >>", false}, // mostly words
        {"", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MachineZone::looksLikeZoneLine(c.text), c.zone) << c.text;
}

TEST(MachineZoneTest, FillersArePutRight) {
    const struct {
        const char* read;
        const char* repaired;
    } cases[] = {
        {"I<UTOD231458907<<<<<<<<<<<<<<<", "I<UTOD231458907<<<<<<<<<<<<<<<"},
        // Lower case, guillemets and spaces.
        {"I<UTOD231458907<<<<<<<<c<ccc<<<", "I<UTOD231458907<<<<<<<<<<<<<<<<"},
        {"P<UTO ERIKSSON<<ANNA<MARIA«<<<", "P<UTOERIKSSON<<ANNA<MARIA<<<<<"},
        {"P<INDDORAN<<NELA<<<<<<<<<<<<<<c<ccc#eeeeeeeec<",
         "P<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<<<<"},
        // A letter after three fillers is a misread one; names part with one or two.
        {"IDALPLK4R7T2V96<<<<<<<<K<K<K<<", "IDALPLK4R7T2V96<<<<<<<<<<<<<<<"},
        {"IDALPLK4R7T2V96<<<<<<<<LLLLLLL", "IDALPLK4R7T2V96<<<<<<<<<<<<<<<"},
        {"ERIKSSON<<ANNA<M<<<<<<<<<<<<<<", "ERIKSSON<<ANNA<M<<<<<<<<<<<<<<"},
        // Digits after fillers are data (a passport's personal number, check digits).
        {"L898902C36UTO7408122F1204159ZE184226B<<<<<10",
         "L898902C36UTO7408122F1204159ZE184226B<<<<<10"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MachineZone::repaired(c.read), c.repaired) << c.read;
}

TEST(MachineZoneTest, TheLinesOfAZoneComeOutEquallyLong) {
    const struct {
        const char* name;
        std::vector<std::string> read, repaired;
    } cases[] = {
        {"an identity card's first line read with four fillers too many",
         {"Name", "IDALPLK4R7T2V96<<<<<<<<K<K<c<<<y<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<", "Signature"},
         {"Name", "IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<", "Signature"}},
        {"a line two fillers short",
         {"I<UTOD231458907<<<<<<<<<<<<<", "7408122F1204159UTO<<<<<<<<<<<6",
          "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"},
         {"I<UTOD231458907<<<<<<<<<<<<<<<", "7408122F1204159UTO<<<<<<<<<<<6",
          "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"}},
        {"two lines that disagree: the passport's length decides",
         {"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<<<<",
          "L898902C36UTO7408122F1204159ZE184226B<<<<<10"},
         {"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<",
          "L898902C36UTO7408122F1204159ZE184226B<<<<<10"}},
        {"a surplus beyond the closing fillers is left as read",
         {"I<UTOD231458907<<<<<<<<<<<<<<<123456", "7408122F1204159UTO<<<<<<<<<<<6",
          "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"},
         {"I<UTOD231458907<<<<<<<<<<<<<<<123456", "7408122F1204159UTO<<<<<<<<<<<6",
          "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<TextLine> lines = linesOf(c.read);
        MachineZone::repair(lines);
        std::vector<std::string> texts;
        for (const TextLine& line : lines)
            texts.push_back(line.text);
        EXPECT_EQ(texts, c.repaired);
    }
}

TEST(MachineZoneTest, LookAlikesAreSwappedWhereTheCheckDigitTellsWhich) {
    const struct {
        const char* name;
        std::vector<std::string> read, repaired;
    } cases[] = {
        {"an identity card's document number with an A for a 4",
         {"IDALPLKAR7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"},
         {"IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"}},
        {"an accented capital read for a 4",
         {"IDALPLKÁR7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"},
         {"IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"}},
        {"letters in dates and check digits are digits",
         {"IDALPLK4R7T2V9G<<<<<<<<<<<<<<<", "94O3I76F34O3163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"},
         {"IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"}},
        {"a passport's document number with an O for a 0",
         {"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<",
          "L8989O2C36UTO7408122F1204159ZE184226B<<<<<10"},
         {"P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<",
          "L898902C36UTO7408122F1204159ZE184226B<<<<<10"}},
        {"two swaps would make the check hold: the number stays as read",
         {"I<UTODZ31458907<<<<<<<<<<<<<<<", "7408122F1204159UTO<<<<<<<<<<<6",
          "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"},
         {"I<UTODZ31458907<<<<<<<<<<<<<<<", "7408122F1204159UTO<<<<<<<<<<<6",
          "ERIKSSON<<ANNA<MARIA<<<<<<<<<<"}},
        {"the ground's pattern read between two zone lines is dropped",
         {"IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8", "ann",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"},
         {"IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
          "BEISPIEL<<LIESELOTTE<ANNA<<<<<"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<TextLine> lines = linesOf(c.read);
        MachineZone::repair(lines);
        std::vector<std::string> texts;
        for (const TextLine& line : lines)
            texts.push_back(line.text);
        EXPECT_EQ(texts, c.repaired);
    }
}

TEST(MachineZoneTest, ALineBesideTheZoneComesAfterIt) {
    std::vector<TextLine> lines =
        linesOf({"IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8", "Signature",
                 "BEISPIEL<<LIESELOTTE<ANNA<<<<<", "09:14"});
    for (TextLine& line : lines)
        line.x = 0.5f, line.w = 0.4f;
    lines[2].x = 0.1f, lines[2].w = 0.2f;
    MachineZone::repair(lines);
    std::vector<std::string> texts;
    for (const TextLine& line : lines)
        texts.push_back(line.text);
    EXPECT_EQ(texts, (std::vector<std::string>{
                         "IDALPLK4R7T2V96<<<<<<<<<<<<<<<", "9403176F3403163ALP<<<<<<<<<<<8",
                         "BEISPIEL<<LIESELOTTE<ANNA<<<<<", "Signature", "09:14"}));
}

} // namespace
} // namespace lumivale
