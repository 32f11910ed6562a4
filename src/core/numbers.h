// Numbers as text and back, the same on every machine and in every locale ("." is the decimal point).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corlune {

// General decimal form: shortest text with at most 15 significant digits, no trailing zeros; exponent form
// (mantissa, "E", sign, at least two digits) below 0.0001 and from 1E15 on; zero, also negative, is "0".
std::string NumberText(double value);
// Appends NumberText(value) to `out`.
void AppendNumber(std::string& out, double value);
void AppendInteger(std::string& out, std::int64_t value);

// Display pattern of "0", "#", ".", "E+0"/"E+#" such as "0.#####", "#0.#", "0.000E+0". Digits are laid out
// from the number at 15 significant digits, ties away from zero. The platform writes a bare "." and "-0";
// FormatNumber shows neither.
std::string FormatNumber(double value, std::string_view pattern);
// The same without the two repairs, as the platform writes it.
std::string FormatPatternRaw(double value, std::string_view pattern);

// Rounds half to even. nullopt for NaN and values outside the type.
std::optional<std::int16_t> ToInt16(double value);
std::optional<std::int32_t> ToInt32(double value);

// Plain decimal form: blanks around, one sign (blanks may follow it), digits with at most one ".", exponent
// ("e" or "E"). Nothing else is a number: no group separators, currency, parentheses, hexadecimal, "inf" or
// "nan". nullopt when the text is no number or its value overflows a double.
std::optional<double> ParseNumber(std::string_view text);
// ParseNumber, then half to even into the type.
std::optional<std::int16_t> ParseInt16(std::string_view text);
std::optional<std::int32_t> ParseInt32(std::string_view text);

// The leading number of a reply: blanks skipped, read up to the first character that cannot continue it;
// 0 when there is none.
double LeadingNumber(std::string_view text);
bool BeginsWithNumber(std::string_view text);  // blanks skipped
// LeadingNumber rounded to 32 bits; values outside the type are held at its ends.
std::int32_t LeadingInteger(std::string_view text);

}  // namespace corlune
