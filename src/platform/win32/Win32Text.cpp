// wchar_t holds UTF-16 on this system, so wide texts are the library's own UTF-16 under another type.
#include "platform/win32/Win32Text.h"

#include <limits>
#include <stdexcept>

#include "base/Utf.h"
#include "platform/win32/Win32Api.h"

namespace kq {
namespace {

int Length(std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::length_error("text");
    return static_cast<int>(size);
}

}  // namespace

std::wstring ToWide(std::string_view text) {
    const std::u16string units = Utf8ToUtf16(text);
    return {units.begin(), units.end()};
}

std::string FromWide(std::wstring_view text) {
    return Utf16ToUtf8(std::u16string(text.begin(), text.end()));
}

std::string ToAnsi(std::string_view text) {
    const std::wstring wide = ToWide(text);
    if (wide.empty()) return {};
    const int from = Length(wide.size());
    const int size = WideCharToMultiByte(CP_ACP, 0, wide.data(), from, nullptr, 0, nullptr, nullptr);
    std::string ansi(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), from, ansi.data(), size, nullptr, nullptr);
    return ansi;
}

std::string FromAnsi(std::string_view text) {
    if (text.empty()) return {};
    const int from = Length(text.size());
    const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), from, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), from, wide.data(), size);
    return FromWide(wide);
}

}  // namespace kq
