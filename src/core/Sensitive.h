#pragma once

#include "core/Shelf.h"

#include <string>
#include <string_view>

namespace lumivale::Sensitive {

// The kinds of private number in a screenshot's text (its lines joined with line feeds):
// card numbers, national ID numbers, tax IDs, passports and bank accounts.
SensitiveKinds find(std::string_view text);

// A Luhn-valid card number: grouped in fours by itself, otherwise with a card word in the text.
// `folded` is the folded text.
bool hasCard(std::string_view text, std::string_view folded);

// A Verhoeff-valid Aadhaar number (grouped, or with an Aadhaar word in the text), a social
// security number with its name in the text, or an identity card's machine-readable zone (three
// lines of 30 or two of 36, starting with I, A or C) whose document number and birth date check.
bool hasNationalID(std::string_view text, std::string_view folded);

// A passport's machine-readable zone, or a passport number with the word "passport".
bool hasPassport(std::string_view text, std::string_view folded);

// An IBAN whose check digits hold, or a number of more than eight digits after an account-number
// phrase.
bool hasBankAccount(std::string_view text);

// The Luhn check over a string of at least two digits; false for anything else.
bool luhn(std::string_view digits);

// The Verhoeff check over a string of at least one digit; false for anything else.
bool verhoeff(std::string_view digits);

// The ISO 7064 MOD 97-10 check of an IBAN written without spaces (15 to 34 characters).
bool mod97(std::string_view iban);

// The check digit of a machine-readable zone's field: digits, letters (A = 10) and "<" (0)
// weighted 7, 3, 1 in turn, summed, modulo 10.
int zoneCheckDigit(std::string_view field);

// The digit that completes `prefix` into a Verhoeff-valid number; 0 when no digit does.
int verhoeffDigit(std::string_view prefix);

} // namespace lumivale::Sensitive
