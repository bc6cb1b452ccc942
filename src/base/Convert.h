// The conversions of the automation run time between texts and values, which all parts of the system rely on.
// A failed conversion raises RuntimeError::TypeMismatch or RuntimeError::Overflow.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kq {

// The numeric prefix of a text: leading spaces are skipped, then sign, digits, point and exponent as long as
// they form a number; 0 if there is no number. The decimal mark is always the point.
double Val(std::string_view text);

// Val rounded to a whole number, halves to the even neighbour. Overflow outside 32 bits.
std::int32_t ValLong(std::string_view text);

// The same two for a text that another program sent; nothing is raised. If the number is too large for a
// double, ReceivedVal is infinite; outside 32 bits ReceivedValLong is 0, as for a text that is not a number.
double ReceivedVal(std::string_view text);
std::int32_t ReceivedValLong(std::string_view text);

// The whole trimmed text must be a number (sign, digits, point, exponent), else TypeMismatch; an empty text
// is not a number. TextToLong rounds halves to even; Overflow outside 32 bits.
double TextToDouble(std::string_view text);
std::int32_t TextToLong(std::string_view text);

// Numeric text: true when not 0; "True" and "False" in any case; else TypeMismatch.
bool TextToBoolean(std::string_view text);

// Rounds halves to even; Overflow outside 32 bits and for values that are not numbers.
std::int32_t RoundToLong(double value);

std::string TextOf(std::int32_t value);
// "True" or "False", as in messages and in the two dialog preferences.
std::string TextOf(bool value);

// ASCII only: other characters are unchanged.
std::string UpperCase(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);
std::string_view Trim(std::string_view text);  // removes spaces at both ends

// Pieces between separators, untrimmed, empty ones kept; an empty text gives one empty piece.
std::vector<std::string> Split(std::string_view text, char separator);

}  // namespace kq
