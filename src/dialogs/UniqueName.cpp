// Counting up to the end of a 16-bit number.
#include "dialogs/UniqueName.h"

#include <cstdint>
#include <limits>
#include <string_view>

#include <kqappsession/Error.h>

namespace kq {

std::string UniqueName(const std::string& proposed, const std::function<bool(const std::string&)>& exists) {
    std::string name = proposed;
    for (std::int16_t counter = 1; exists(name);) {
        if (counter == std::numeric_limits<std::int16_t>::max()) Raise(RuntimeError::Overflow);
        name = proposed + std::to_string(++counter);
    }
    return name;
}

std::string NameForCopy(const std::string& original, const std::function<bool(const std::string&)>& exists) {
    constexpr std::string_view kCopyOf = "Copy of ";
    const bool is_copy = original.rfind(kCopyOf, 0) == 0;
    try {
        return UniqueName(is_copy ? original : std::string(kCopyOf) + original, exists);
    } catch (const Error&) {
        return {};
    }
}

}  // namespace kq
