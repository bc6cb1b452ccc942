// Whole numbers in texts that an operator wrote: command lines, configuration files, the environment.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kq {

struct NumberRange {
    std::int32_t least;
    std::int32_t most;
};

// Decimal digits, with "-" in front when the number is negative, and nothing else. Nothing when it is another
// text or outside the range, however long.
std::optional<std::int32_t> WholeNumber(std::string_view text, NumberRange range);

// "1 to 65535"
std::string RangeText(NumberRange range);
// The end of a sentence about a text that is refused: "must be a whole number from 1 to 65535"
std::string RangeRule(NumberRange range);

}  // namespace kq
