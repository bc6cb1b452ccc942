// The styles are the system's own numbers, so they go into the call as they are.
#include "platform/win32/Win32MessageBox.h"

#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

static_assert(static_cast<UINT>(BoxStyle::Error) == (MB_OK | MB_ICONERROR));
static_assert(static_cast<UINT>(BoxStyle::Warning) == (MB_OK | MB_ICONWARNING));
static_assert(static_cast<UINT>(BoxStyle::YesNoCancel) == (MB_YESNOCANCEL | MB_ICONWARNING));
static_assert(static_cast<UINT>(BoxStyle::YesNo) == (MB_YESNO | MB_ICONWARNING));
static_assert(static_cast<UINT>(BoxStyle::Information) == (MB_OK | MB_ICONINFORMATION));

BoxButton Unanswered(BoxStyle style) {
    switch (style) {
        case BoxStyle::YesNoCancel:
            return BoxButton::Cancel;
        case BoxStyle::YesNo:
            return BoxButton::No;
        default:
            return BoxButton::OK;
    }
}

}  // namespace

BoxButton ShowWin32MessageBox(const std::string& text, const std::string& caption, BoxStyle style) {
    const int pressed =
        MessageBoxW(nullptr, ToWide(text).c_str(), ToWide(caption).c_str(), static_cast<UINT>(style));
    switch (pressed) {
        case IDOK:
        case IDCANCEL:
        case IDYES:
        case IDNO:
            return static_cast<BoxButton>(pressed);
        default:
            return Unanswered(style);
    }
}

}  // namespace kq
