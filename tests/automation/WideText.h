// Texts of the system as UTF-8 and back.
#pragma once

#include <string>
#include <string_view>

#include "base/Utf.h"

namespace kq {

inline std::wstring Wide(std::string_view text) {
    const std::u16string wide = Utf8ToUtf16(text);
    return {wide.begin(), wide.end()};
}

inline std::string Narrow(const wchar_t* text) {
    if (!text) return {};
    const std::wstring_view wide(text);
    return Utf16ToUtf8(std::u16string(wide.begin(), wide.end()));
}

}  // namespace kq
