// The window class is registered with the first window and unregistered with the last one: the system would
// keep the class of a DLL that has been unloaded, and call a procedure that no longer exists.
#include "platform/win32/MessageWindow.h"

#include <exception>
#include <mutex>
#include <stdexcept>
#include <utility>

#include <kqappsession/Signal.h>

#include "platform/win32/Win32Module.h"

namespace kq {
namespace {

constexpr const wchar_t* kClassName = L"KQAppSessionLib.MessageWindow";

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    using Stored = std::shared_ptr<MessageWindow::Handler>;
    const auto* const stored = reinterpret_cast<const Stored*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (stored) {
        const Stored handler = *stored;  // lives on when it destroys the window
        try {
            (*handler)(message, first, second);
        } catch (...) {
            ReportStrayException(std::current_exception());
        }
    }
    return DefWindowProcW(window, message, first, second);
}

}  // namespace

class MessageWindow::WindowClass {
 public:
    WindowClass() {
        WNDCLASSEXW description{};
        description.cbSize = sizeof description;
        description.lpfnWndProc = &OnMessage;
        description.hInstance = ThisModule();
        description.lpszClassName = kClassName;
        if (RegisterClassExW(&description) == 0)
            throw std::runtime_error("no window class can be registered");
    }
    WindowClass(const WindowClass&) = delete;
    WindowClass& operator=(const WindowClass&) = delete;
    ~WindowClass() { UnregisterClassW(kClassName, ThisModule()); }

    static std::shared_ptr<WindowClass> Get() {
        static std::mutex mutex;
        static std::weak_ptr<WindowClass> only;
        const std::lock_guard lock(mutex);
        auto held = only.lock();
        if (!held) only = held = std::make_shared<WindowClass>();
        return held;
    }
};

MessageWindow::MessageWindow(Handler handler)
    : class_(WindowClass::Get()), handler_(std::make_shared<Handler>(std::move(handler))) {
    window_ =
        CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, ThisModule(), nullptr);
    if (!window_) throw std::runtime_error("no window can be made");
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&handler_));
}

MessageWindow::~MessageWindow() {
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
}

}  // namespace kq
