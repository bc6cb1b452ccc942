// Text and number conversions. One scanner finds the numeric prefix for all of them, so that the prefix rule
// and the whole-text rule can never disagree about what a number is.
#include "base/Convert.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <kqappsession/Error.h>

namespace kq {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Texts typed or stored by people may end in a line break or be set off by a tabulator.
bool IsNumberBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::size_t SkipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

// The end of the number that starts at the front of `text`; 0 when none does.
std::size_t NumberLength(std::string_view text) {
    std::size_t at = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    const std::size_t whole_end = SkipDigits(text, at);
    std::size_t digits = whole_end - at;
    at = whole_end;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction_end = SkipDigits(text, at + 1);
        digits += fraction_end - at - 1;
        at = fraction_end;
    }
    if (digits == 0) return 0;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        std::size_t exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
        const std::size_t exponent_end = SkipDigits(text, exponent);
        if (exponent_end > exponent) at = exponent_end;
    }
    return at;
}

// Whether a number that no double can hold is too small rather than too large: by the place of its first
// digit that is not 0, moved by the exponent.
bool IsTiny(std::string_view number) {
    const std::size_t mark = number.find_first_of("eE");
    const std::string_view mantissa = number.substr(0, mark);
    const std::size_t first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos) return true;
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    long long place = static_cast<long long>(point) - static_cast<long long>(first);
    if (mark != std::string_view::npos) {
        const bool negative = number[mark + 1] == '-';
        std::string_view digits = number.substr(mark + 1);
        if (digits[0] == '+' || digits[0] == '-') digits.remove_prefix(1);
        long long exponent = 0;
        const auto end = digits.data() + digits.size();
        if (std::from_chars(digits.data(), end, exponent).ec != std::errc()) return negative;
        if (exponent > std::numeric_limits<long long>::max() / 4) return negative;
        place += negative ? -exponent : exponent;
    }
    return place < 0;
}

// `number` is what NumberLength found. What is too small becomes 0, what is too large infinite.
double ValueOrInfinity(std::string_view number) {
    if (number[0] == '+') number.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc() && std::isfinite(value)) return value;
    if (IsTiny(number)) return 0;
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    return number[0] == '-' ? -kInfinity : kInfinity;
}

double ValueOf(std::string_view number) {
    const double value = ValueOrInfinity(number);
    if (!std::isfinite(value)) Raise(RuntimeError::Overflow);
    return value;
}

// Halves to the even neighbour. Not std::nearbyint: a host may have changed the rounding mode.
double RoundToWhole(double value) {
    double whole = std::floor(value);
    const double rest = value - whole;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2) != 0)) whole += 1;
    return whole;
}

bool FitsLong(double whole) {
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
    return whole >= kLowest && whole <= kHighest;
}

std::string_view TrimForNumber(std::string_view text) {
    while (!text.empty() && IsNumberBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsNumberBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

double Val(std::string_view text) {
    text = TrimForNumber(text);
    const std::size_t length = NumberLength(text);
    return length == 0 ? 0 : ValueOf(text.substr(0, length));
}

std::int32_t ValLong(std::string_view text) {
    return RoundToLong(Val(text));
}

double ReceivedVal(std::string_view text) {
    text = TrimForNumber(text);
    const std::size_t length = NumberLength(text);
    return length == 0 ? 0 : ValueOrInfinity(text.substr(0, length));
}

std::int32_t ReceivedValLong(std::string_view text) {
    const double whole = RoundToWhole(ReceivedVal(text));
    return FitsLong(whole) ? static_cast<std::int32_t>(whole) : 0;
}

double TextToDouble(std::string_view text) {
    text = TrimForNumber(text);
    const std::size_t length = NumberLength(text);
    if (length == 0 || length != text.size()) Raise(RuntimeError::TypeMismatch);
    return ValueOf(text);
}

std::int32_t TextToLong(std::string_view text) {
    return RoundToLong(TextToDouble(text));
}

bool TextToBoolean(std::string_view text) {
    const std::string_view word = TrimForNumber(text);
    if (EqualsIgnoringCase(word, "True")) return true;
    if (EqualsIgnoringCase(word, "False")) return false;
    return TextToDouble(word) != 0;
}

std::int32_t RoundToLong(double value) {
    const double whole = RoundToWhole(value);
    if (!FitsLong(whole)) Raise(RuntimeError::Overflow);
    return static_cast<std::int32_t>(whole);
}

std::string TextOf(std::int32_t value) {
    return std::to_string(value);
}

std::string TextOf(bool value) {
    return value ? "True" : "False";
}

std::string UpperCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), Upper);
    return result;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Upper(x) == Upper(y); });
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(separator, start)) != std::string_view::npos; start = end + 1) {
        pieces.emplace_back(text.substr(start, end - start));
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
}

}  // namespace kq
