// Automation codes are known by their hexadecimal digits, the numbers of connections by their decimal ones.
#include "base/ErrorNumber.h"

#include <array>
#include <cstdio>

namespace kq {

std::string ErrorNumberText(std::int32_t number) {
    if (number >= 0) return std::to_string(number);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(number));
    return text.data();
}

}  // namespace kq
