// The styles have the system's numbers, so they are passed to the call unchanged.
#include "forms/win32/Win32MessageBox.h"

#include <utility>

#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

static_assert(static_cast<UINT>(BoxStyle::Error) == (MB_OK | MB_ICONERROR));
static_assert(static_cast<UINT>(BoxStyle::Warning) == (MB_OK | MB_ICONWARNING));
static_assert(static_cast<UINT>(BoxStyle::YesNoCancel) == (MB_YESNOCANCEL | MB_ICONWARNING));
static_assert(static_cast<UINT>(BoxStyle::YesNo) == (MB_YESNO | MB_ICONWARNING));
static_assert(static_cast<UINT>(BoxStyle::Information) == (MB_OK | MB_ICONINFORMATION));

// Finds the window of the thread's next message box, which the call that shows a box does not return.
class BoxWindow {
 public:
    BoxWindow() : outer_(std::exchange(awaiting_, this)) {
        hook_ = SetWindowsHookExW(WH_CBT, &Created, nullptr, GetCurrentThreadId());
    }
    BoxWindow(const BoxWindow&) = delete;
    BoxWindow& operator=(const BoxWindow&) = delete;
    ~BoxWindow() {
        if (hook_) UnhookWindowsHookEx(hook_);
        awaiting_ = outer_;
    }
    void Close(BoxButton answer) {
        if (window_) EndDialog(window_, static_cast<INT_PTR>(answer));
    }

 private:
    static LRESULT CALLBACK Created(int code, WPARAM window, LPARAM details) {
        if (code == HCBT_CREATEWND && awaiting_ && !awaiting_->window_) {
            const auto created = reinterpret_cast<HWND>(window);
            if (GetClassLongPtrW(created, GCW_ATOM) == kDialogClass) awaiting_->window_ = created;
        }
        return CallNextHookEx(nullptr, code, window, details);
    }

    static constexpr ULONG_PTR kDialogClass = 32770;  // WC_DIALOG
    static thread_local BoxWindow* awaiting_;         // of the box on top

    BoxWindow* const outer_;
    HHOOK hook_ = nullptr;
    HWND window_ = nullptr;
};

thread_local BoxWindow* BoxWindow::awaiting_ = nullptr;

}  // namespace

BoxButton ShowWin32MessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                              Signal<>& withdrawn) {
    BoxWindow box;
    const Owner life;
    withdrawn.Connect(life, [&] { box.Close(Unanswered(style)); });
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
