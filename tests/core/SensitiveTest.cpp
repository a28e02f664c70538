#include "core/Sensitive.h"

#include "core/Fold.h"

#include <gtest/gtest.h>
#include <string>

using namespace lumivale;

namespace {

struct Case {
    std::string text;
    bool expected;
};

TEST(Sensitive, LuhnIsThePublishedCheck) {
    const Case cases[] = {
        {"4111111111111111", true}, {"79927398713", true}, {"378282246310005", true}, {"00", true},
        {"79927398710", false}, {"4111111111111112", false}, {"0", false}, {"", false},
        {"41a1", false},
        {"٧٩٩٢٧٣٩٨٧١٣", true}, // the same digits in Arabic-Indic script
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Sensitive::luhn(c.text), c.expected);
    }
}

TEST(Sensitive, VerhoeffIsThePublishedCheck) {
    const Case cases[] = {
        {"2363", true},   {"123451", true},  {"1234567890120", true},  {"0", true},
        {"2364", false},  {"123452", false}, {"1234567890121", false}, {"", false},
        {"23 63", false}, {"x", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Sensitive::verhoeff(c.text), c.expected);
    }
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

TEST(Sensitive, Mod97IsTheIbanCheck) {
    const Case cases[] = {
        {"GB82WEST12345698765432", true}, {"DE89370400440532013000", true},
        {"FR1420041010050500013M02606", true},
        {"NO9386011117947", true},                      // the shortest, 15 characters
        {"GB60WEST11111111111111111111111111", true},   // 34 characters
        {"GB23WEST111111111111111111111111111", false}, // 35, though its check digits hold
        {"GB82WEST12345698765433", false}, {"gb82west12345698765432", false},
        {"GB82 WEST 1234 5698 7654 32", false}, {"NO938601111794", false}, {"", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Sensitive::mod97(c.text), c.expected);
    }
}

bool card(const std::string& text) {
    return Sensitive::hasCard(text, foldText(text));
}

TEST(Sensitive, CardNumbersByGroupingAndCardWords) {
    const Case cases[] = {
        {"4111 1111 1111 1111", true}, {"4111111111111111", false},
        {"4111111111111111\nVISA", true}, {"4111111111111111 exp 12/29", true},
        {"4111111111111111 visas", false}, // a card word only as a whole word
        {"export 4111111111111111", false},
        {"4111 11 1111111111", false}, // grouped 4, 2, 10
        {"4111 11 1111111111 debit", true},
        {"3782 822463 10005", false}, // the usual Amex grouping is irregular here
        {"AMEX 3782 822463 10005", true},
        {"4111 1111 1111 1112", false},      // fails Luhn
        {"1111 1111 1111 1117 card", false}, // valid Luhn, but no card starts with 1
        {"9111 1111 1111 1110 card", false},
        {"4444 4444 4444 4444 4 card", false}, // one repeated digit, though Luhn-valid
        {"411111111111 card", false},          // 12 digits
        {"41111111111111111111 card", false},  // 20 digits
        {"", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(card(c.text), c.expected);
    }
}

bool nationalID(const std::string& text) {
    return Sensitive::hasNationalID(text, foldText(text));
}

TEST(Sensitive, AadhaarNumbersNeedTheirCheckAndAGroupingOrAHint) {
    // 2345 6789 0124 and 9876 5432 1096 pass the Verhoeff check; 0345 6789 0128 and
    // 1234 5678 9010 pass it too but no Aadhaar number begins with 0 or 1.
    const Case cases[] = {
        {"2345 6789 0124", true},          {"2345-6789-0124", true},
        {"234567890124", false},           {"Aadhaar 234567890124", true},
        {"AADHAR No 234567890124", true},  {"uidai.gov.in 987654321096", true},
        {"आधार 987654321096", true},       {"2345 6789 0125", false},
        {"Aadhaar 2345 6789 0125", false}, {"0345 6789 0128", false},
        {"1234 5678 9010", false},         {"12345 6789 0124", false}, // part of a longer number
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(nationalID(c.text), c.expected);
    }
}

TEST(Sensitive, SocialSecurityNumbersNeedTheirName) {
    const Case cases[] = {
        {"SSN: 123-45-6789", true},  {"Social Security Number 123-45-6789", true},
        {"ssn 123-45-6789", true},   {"123-45-6789", false},
        {"SSNs 123-45-6789", false}, {"classnote 123-45-6789", false},
        {"SSN 000-12-3456", false},  {"SSN 666-12-3456", false},
        {"SSN 912-34-5678", false},  {"SSN 123-00-4567", false},
        {"SSN 123-45-0000", false},  {"SSN 1123-45-6789", false},
        {"SSN 123-45-67890", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(nationalID(c.text), c.expected);
    }
}

bool passport(const std::string& text) {
    return Sensitive::hasPassport(text, foldText(text));
}

TEST(Sensitive, PassportsByMachineZoneOrNumberWithTheWord) {
    const Case cases[] = {
        {"P<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<\n"
         "Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02",
         true},
        {"Republic of India\nP<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<", true},
        {"P < IND DORAN << NELA <<<<<<<<<<<<<<<<<<<<<<<<<<<", true}, // spaces from the reader
        {"Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02", true},
        {"PAINDDORANNELAXXXXXXXXXXXXXXXXXXXXX", false}, // the line's shape, but no "<<"
        {"Passport No: Z1234567", true}, {"PASSPORT\nZ1234567", true}, {"Z1234567", false},
        {"Passport No: Z12345678", false}, {"", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(passport(c.text), c.expected);
    }
}

TEST(Sensitive, BankAccountsByIbanOrAccountPhrase) {
    const Case cases[] = {
        {"IBAN GB82 WEST 1234 5698 7654 32", true}, {"DE89370400440532013000", true},
        {"GB82 WEST 1234 5698 7654 33", false}, {"Account No: 1234567890", true},
        {"account number 1234 5678 90", true}, {"A/C No. 12345678", false},
        {"A/c 12345 6789", true},       // nine digits in ten characters
        {"Acct. No. 123456789", false}, // nine characters are too few
        {"1234567890", false}, {"", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Sensitive::hasBankAccount(c.text), c.expected);
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
