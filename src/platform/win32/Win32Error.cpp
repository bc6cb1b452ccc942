#include "platform/win32/Win32Error.h"

#include <array>

#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Text.h"

namespace kq {

std::string SystemErrorText(std::uint32_t error) {
    std::array<wchar_t, 1024> buffer{};
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
        error, 0, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
    const std::wstring_view text(buffer.data(), length);
    const std::size_t end = text.find_last_not_of(L" .\r\n");
    if (end == std::wstring_view::npos) return "The system reports the error " + std::to_string(error);
    return FromWide(text.substr(0, end + 1));
}

}  // namespace kq
