#include "core/Sensitive.h"

#include <gtest/gtest.h>
#include <string>

using namespace lumivale;

namespace {

// Whether the text is found to hold a private number of this kind.
template <SensitiveKind kind> bool found(std::string_view text) {
    return Sensitive::find(text).contains(kind);
}

// Specimen zones: an identity card of three lines (TD1), of two (TD2), and a passport (TD3).
const std::string td1 = "I<UTOD231458907<<<<<<<<<<<<<<<\n"
                        "7408122F1204159UTO<<<<<<<<<<<6\n"
                        "ERIKSSON<<ANNA<MARIA<<<<<<<<<<";
const std::string td2 = "I<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<\n"
                        "D231458907UTO7408122F1204159<<<<<<<6";
const std::string td3 = "P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<\n"
                        "L898902C36UTO7408122F1204159ZE184226B<<<<<10";

std::string replaced(std::string s, size_t at, std::string_view by) {
    return s.replace(at, 1, by);
}

// The text with a space after every fifth character, as a reader may split a long line.
std::string spaced(const std::string& s) {
    std::string out;
    for (size_t i = 0; i < s.size(); ++i)
        out += s.substr(i, 1) + (i % 5 == 4 && s[i] != '\n' ? " " : "");
    return out;
}

TEST(Sensitive, ZoneCheckDigits) {
    const struct {
        std::string field;
        int digit;
    } cases[] = {{"D23145890", 7}, {"740812", 2}, {"120415", 9}, {"L898902C3", 6},
                 {"<<<<<<", 0},    {"", 0},       {"Z", 5}};
    for (const auto& c : cases)
        EXPECT_EQ(Sensitive::zoneCheckDigit(c.field), c.digit) << c.field;
}

TEST(Sensitive, EachCheckAndRule) {
    using enum SensitiveKind;
    const struct {
        bool (*check)(std::string_view);
        std::vector<std::string> pass, fail;
    } cases[] = {
        // Published valid and invalid numbers; the last Luhn number is in Arabic-Indic digits.
        {Sensitive::luhn,
         {"4111111111111111", "79927398713", "378282246310005", "00", "٧٩٩٢٧٣٩٨٧١٣"},
         {"79927398710", "4111111111111112", "0", "", "41a1"}},
        {Sensitive::verhoeff,
         {"2363", "123451", "1234567890120", "0"},
         {"2364", "123452", "1234567890121", "", "23 63", "x"}},
        // MOD 97-10, the IBAN check, on 15 to 34 characters: the 35-character one fails though its
        // check digits hold.
        {Sensitive::mod97,
         {"GB82WEST12345698765432", "DE89370400440532013000", "FR1420041010050500013M02606",
          "NO9386011117947", "GB60WEST11111111111111111111111111"},
         {"GB23WEST111111111111111111111111111", "GB82WEST12345698765433", "gb82west12345698765432",
          "GB82 WEST 1234 5698 7654 32", "NO938601111794", ""}},
        // Card numbers: grouped 4-4-4-4 (or 4-6-5 for Amex only with its word), or with a card
        // word as a whole word; Luhn-valid, starting as a card does, not one repeated digit, 13
        // to 19 digits.
        {found<cardNumber>,
         {"4111 1111 1111 1111", "4111111111111111\nVISA", "4111111111111111 exp 12/29",
          "4111 11 1111111111 debit", "AMEX 3782 822463 10005"},
         {"4111111111111111", "4111111111111111 visas", "export 4111111111111111",
          "4111 11 1111111111", "3782 822463 10005", "4111 1111 1111 1112",
          "1111 1111 1111 1117 card", "9111 1111 1111 1110 card", "4444 4444 4444 4444 4 card",
          "411111111111 card", "41111111111111111111 card", ""}},
        // Aadhaar: grouped, or with an Aadhaar word; Verhoeff-valid, not starting with 0 or 1 (the
        // last two pass the check), not part of a longer number.
        {found<nationalID>,
         {"2345 6789 0124", "2345-6789-0124", "Aadhaar 234567890124", "AADHAR No 234567890124",
          "uidai.gov.in 987654321096", "आधार 987654321096"},
         {"234567890124", "2345 6789 0125", "Aadhaar 2345 6789 0125", "12345 6789 0124",
          "0345 6789 0128", "1234 5678 9010"}},
        // Identity cards' machine-readable zones: three lines of 30 or two of 36, coded I, A or C,
        // whose document-number and birth-date check digits hold (also read with spaces, below
        // other text). A passport's zone, a visa's, a broken check or a line of the wrong length
        // is none.
        {found<nationalID>,
         {td1, "Name\n" + spaced(td1) + "\nsigned", td2, "A" + td1.substr(1), "C" + td2.substr(1)},
         {td3, "V" + td1.substr(1), "P" + td2.substr(1),
          // document number's check digit 7 → 8; birth date's 2 → 3
          replaced(td1, 14, "8"), replaced(td1, 37, "3"), replaced(td2, 46, "8"),
          replaced(td2, 56, "3"),
          // a filler lost, or the zone's last line missing
          replaced(td1, 20, ""), td1.substr(0, 61), td2.substr(0, 36)}},
        // Social security numbers need their name, and a number that could be issued.
        {found<nationalID>,
         {"SSN: 123-45-6789", "Social Security Number 123-45-6789", "ssn 123-45-6789"},
         {"123-45-6789", "SSNs 123-45-6789", "classnote 123-45-6789", "SSN 000-12-3456",
          "SSN 666-12-3456", "SSN 912-34-5678", "SSN 123-00-4567", "SSN 123-45-0000",
          "SSN 1123-45-6789", "SSN 123-45-67890"}},
        // Passports: the machine-readable zone (also with the reader's spaces), or a number with
        // the word; a line of the zone's shape without "<<" is none.
        {found<passport>,
         {"P<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<\n"
          "Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02",
          "Republic of India\nP<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<",
          "P < IND DORAN << NELA <<<<<<<<<<<<<<<<<<<<<<<<<<<",
          "Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02", "Passport No: Z1234567",
          "PASSPORT\nZ1234567"},
         {"PAINDDORANNELAXXXXXXXXXXXXXXXXXXXXX", "Z1234567", "Passport No: Z12345678", ""}},
        // A passport's zone stays a passport; a three-line card zone is not one (a two-line one
        // has the shape of a passport's second line, and stays flagged as it was).
        {found<passport>, {td3, td2}, {td1}},
        // Tax IDs: a PAN of a holder type, standing as a word of its own (a GSTIN carries one).
        {found<taxID>,
         {"PAN ABCPE1234F"},
         {"ABCDE1234F", "GSTIN 29ABCPE1234F1Z5", "Lunch at 12:30, ₹450"}},
        // Bank accounts: an IBAN, or an account phrase with ten characters of digits and spaces
        // holding at least nine digits.
        {found<bankAccount>,
         {"IBAN GB82 WEST 1234 5698 7654 32", "DE89370400440532013000", "Account No: 1234567890",
          "account number 1234 5678 90", "A/c 12345 6789"},
         {"GB82 WEST 1234 5698 7654 33", "A/C No. 12345678", "Acct. No. 123456789", "1234567890",
          ""}},
    };
    for (const auto& c : cases) {
        for (const std::string& text : c.pass)
            EXPECT_TRUE(c.check(text)) << text;
        for (const std::string& text : c.fail)
            EXPECT_FALSE(c.check(text)) << text;
    }
}

} // namespace
