// An invisible window that receives messages of its thread. It is in no list of windows.
#pragma once

#include <functional>
#include <memory>

#include "platform/win32/Win32Api.h"

namespace kq {

class MessageWindow {
 public:
    // Called for every message, the system's own about the window's life included. May destroy the window. An
    // exception that leaves it is reported as a stray one.
    using Handler = std::function<void(UINT message, WPARAM first, LPARAM second)>;

    // Belongs to the calling thread. Raises a runtime error when the system makes no window.
    explicit MessageWindow(Handler handler);
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;
    ~MessageWindow();

    HWND Get() const { return window_; }

 private:
    class WindowClass;

    std::shared_ptr<WindowClass> class_;
    std::shared_ptr<Handler> handler_;
    HWND window_ = nullptr;
};

}  // namespace kq
