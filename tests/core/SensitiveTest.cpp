#include "core/Sensitive.h"

#include "core/Fold.h"

#include <gtest/gtest.h>
#include <string>

using namespace lumivale;

namespace {

bool luhn(const std::string& t) {
    return Sensitive::luhn(t);
}
bool verhoeff(const std::string& t) {
    return Sensitive::verhoeff(t);
}
bool mod97(const std::string& t) {
    return Sensitive::mod97(t);
}
bool card(const std::string& t) {
    return Sensitive::hasCard(t, foldText(t));
}
bool nationalID(const std::string& t) {
    return Sensitive::hasNationalID(t, foldText(t));
}
bool passport(const std::string& t) {
    return Sensitive::hasPassport(t, foldText(t));
}
bool bankAccount(const std::string& t) {
    return Sensitive::hasBankAccount(t);
}

TEST(Sensitive, EachCheckAndRule) {
    const struct {
        bool (*check)(const std::string&);
        std::string text;
        bool expected;
    } cases[] = {
        // Luhn, with published valid and invalid numbers.
        {luhn, "4111111111111111", true},
        {luhn, "79927398713", true},
        {luhn, "378282246310005", true},
        {luhn, "00", true},
        {luhn, "79927398710", false},
        {luhn, "4111111111111112", false},
        {luhn, "0", false},
        {luhn, "", false},
        {luhn, "41a1", false},
        {luhn, "٧٩٩٢٧٣٩٨٧١٣", true}, // the same digits in Arabic-Indic script
        // Verhoeff.
        {verhoeff, "2363", true},
        {verhoeff, "123451", true},
        {verhoeff, "1234567890120", true},
        {verhoeff, "0", true},
        {verhoeff, "2364", false},
        {verhoeff, "123452", false},
        {verhoeff, "1234567890121", false},
        {verhoeff, "", false},
        {verhoeff, "23 63", false},
        {verhoeff, "x", false},
        // MOD 97-10, the IBAN check.
        {mod97, "GB82WEST12345698765432", true},
        {mod97, "DE89370400440532013000", true},
        {mod97, "FR1420041010050500013M02606", true},
        {mod97, "NO9386011117947", true},                      // the shortest, 15 characters
        {mod97, "GB60WEST11111111111111111111111111", true},   // 34 characters
        {mod97, "GB23WEST111111111111111111111111111", false}, // 35, though its check digits hold
        {mod97, "GB82WEST12345698765433", false},
        {mod97, "gb82west12345698765432", false},
        {mod97, "GB82 WEST 1234 5698 7654 32", false},
        {mod97, "NO938601111794", false},
        {mod97, "", false},
        // Card numbers: grouped, or with a card word.
        {card, "4111 1111 1111 1111", true},
        {card, "4111111111111111", false},
        {card, "4111111111111111\nVISA", true},
        {card, "4111111111111111 exp 12/29", true},
        {card, "4111111111111111 visas", false}, // a card word only as a whole word
        {card, "export 4111111111111111", false},
        {card, "4111 11 1111111111", false}, // grouped 4, 2, 10
        {card, "4111 11 1111111111 debit", true},
        {card, "3782 822463 10005", false}, // the usual Amex grouping is irregular here
        {card, "AMEX 3782 822463 10005", true},
        {card, "4111 1111 1111 1112", false},      // fails Luhn
        {card, "1111 1111 1111 1117 card", false}, // valid Luhn, but no card starts with 1
        {card, "9111 1111 1111 1110 card", false},
        {card, "4444 4444 4444 4444 4 card", false}, // one repeated digit, though Luhn-valid
        {card, "411111111111 card", false},          // 12 digits
        {card, "41111111111111111111 card", false},  // 20 digits
        {card, "", false},
        // Aadhaar: 2345 6789 0124 and 9876 5432 1096 pass the Verhoeff check; 0345 6789 0128 and
        // 1234 5678 9010 pass it too but no Aadhaar number begins with 0 or 1.
        {nationalID, "2345 6789 0124", true},
        {nationalID, "2345-6789-0124", true},
        {nationalID, "234567890124", false},
        {nationalID, "Aadhaar 234567890124", true},
        {nationalID, "AADHAR No 234567890124", true},
        {nationalID, "uidai.gov.in 987654321096", true},
        {nationalID, "आधार 987654321096", true},
        {nationalID, "2345 6789 0125", false},
        {nationalID, "Aadhaar 2345 6789 0125", false},
        {nationalID, "0345 6789 0128", false},
        {nationalID, "1234 5678 9010", false},
        {nationalID, "12345 6789 0124", false}, // part of a longer number,
        // Social security numbers need their name.
        {nationalID, "SSN: 123-45-6789", true},
        {nationalID, "Social Security Number 123-45-6789", true},
        {nationalID, "ssn 123-45-6789", true},
        {nationalID, "123-45-6789", false},
        {nationalID, "SSNs 123-45-6789", false},
        {nationalID, "classnote 123-45-6789", false},
        {nationalID, "SSN 000-12-3456", false},
        {nationalID, "SSN 666-12-3456", false},
        {nationalID, "SSN 912-34-5678", false},
        {nationalID, "SSN 123-00-4567", false},
        {nationalID, "SSN 123-45-0000", false},
        {nationalID, "SSN 1123-45-6789", false},
        {nationalID, "SSN 123-45-67890", false},
        // Passports: the machine-readable zone, or a number with the word.
        {passport,
         "P<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<\n"
         "Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02",
         true},
        {passport, "Republic of India\nP<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<", true},
        {passport, "P < IND DORAN << NELA <<<<<<<<<<<<<<<<<<<<<<<<<<<",
         true}, // spaces from the reader
        {passport, "Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02", true},
        {passport, "PAINDDORANNELAXXXXXXXXXXXXXXXXXXXXX", false}, // the line's shape, but no "<<"
        {passport, "Passport No: Z1234567", true},
        {passport, "PASSPORT\nZ1234567", true},
        {passport, "Z1234567", false},
        {passport, "Passport No: Z12345678", false},
        {passport, "", false},
        // Bank accounts: an IBAN or an account phrase.
        {bankAccount, "IBAN GB82 WEST 1234 5698 7654 32", true},
        {bankAccount, "DE89370400440532013000", true},
        {bankAccount, "GB82 WEST 1234 5698 7654 33", false},
        {bankAccount, "Account No: 1234567890", true},
        {bankAccount, "account number 1234 5678 90", true},
        {bankAccount, "A/C No. 12345678", false},
        {bankAccount, "A/c 12345 6789", true},       // nine digits in ten characters
        {bankAccount, "Acct. No. 123456789", false}, // nine characters are too few
        {bankAccount, "1234567890", false},
        {bankAccount, "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.check(c.text), c.expected);
    }
}

TEST(Sensitive, VerhoeffCheckDigits) {
    // Check digits published for the scheme.
    EXPECT_EQ(Sensitive::verhoeffDigit("236"), 3);
    EXPECT_EQ(Sensitive::verhoeffDigit("12345"), 1);
    EXPECT_EQ(Sensitive::verhoeffDigit("123456789012"), 0);
    EXPECT_EQ(Sensitive::verhoeffDigit("ab"), 0);
    for (std::string prefix : {"", "7", "23456789012", "98765432109"}) {
        SCOPED_TRACE(prefix);
        const int digit = Sensitive::verhoeffDigit(prefix);
        EXPECT_TRUE(Sensitive::verhoeff(prefix + std::to_string(digit)));
        for (int other = 0; other < 10; ++other) {
            if (other != digit) {
                EXPECT_FALSE(Sensitive::verhoeff(prefix + std::to_string(other)));
            }
        }
    }
}

TEST(Sensitive, FindRunsEveryDetector) {
    const struct {
        std::string text;
        SensitiveKinds expected;
    } cases[] = {
        {"Lunch at 12:30, ₹450", {}},
        {"4111 1111 1111 1111", {SensitiveKind::cardNumber}},
        {"PAN ABCPE1234F", {SensitiveKind::taxID}},
        {"ABCDE1234F", {}}, // D is no holder type
        // A GSTIN carries a PAN inside, but no word boundary stands before it.
        {"GSTIN 29ABCPE1234F1Z5", {}},
        {"Card 4111111111111111\nPassport Z1234567\nAadhaar 2345 6789 0124\nABCPE1234F\n"
         "IBAN GB82 WEST 1234 5698 7654 32",
         {SensitiveKind::cardNumber, SensitiveKind::nationalID, SensitiveKind::taxID,
          SensitiveKind::passport, SensitiveKind::bankAccount}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Sensitive::find(c.text), c.expected);
    }
}

} // namespace
