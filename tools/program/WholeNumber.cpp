#include "tools/program/WholeNumber.h"

#include <charconv>

namespace kq {

std::optional<std::int32_t> WholeNumber(std::string_view text, NumberRange range) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool whole = result.ec == std::errc() && result.ptr == end;
    if (!whole || number < range.least || number > range.most) return std::nullopt;
    return number;
}

std::string RangeText(NumberRange range) {
    return std::to_string(range.least) + " to " + std::to_string(range.most);
}

std::string RangeRule(NumberRange range) {
    return "must be a whole number from " + std::to_string(range.least) + " to " + std::to_string(range.most);
}

}  // namespace kq
