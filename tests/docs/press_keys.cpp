// A user at the windows of another program: waits for each window in turn and presses keys there.
//
//   press_keys "TITLE: KEY KEY..." ...
//
// A KEY is a key's X name ("Return", "Tab") or a text to be typed. Ends with 1 when a window does not come
// within 30 s.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <chrono>
#include <iostream>
#include <poll.h>
#include <sstream>
#include <string>

#include "gui/Hand.h"

namespace kq {
namespace {

constexpr std::chrono::seconds kPatience{30};

class Screen {
 public:
    Screen() : display_(XOpenDisplay(nullptr)) {
        if (!display_) throw std::runtime_error("there is no display");
        XSelectInput(display_, DefaultRootWindow(display_), SubstructureNotifyMask | PropertyChangeMask);
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { XCloseDisplay(display_); }

    // Waits until the window of that title is the topmost one: what is below a modal window takes no keys.
    Window Await(const std::string& title) {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        for (;;) {
            if (const Window window = Find(title)) return window;
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            pollfd events{ConnectionNumber(display_), POLLIN, 0};
            if (left.count() <= 0 ||
                (XPending(display_) == 0 && poll(&events, 1, static_cast<int>(left.count())) == 0))
                throw std::runtime_error("no window \"" + title + "\" comes, above is \"" + top_ + "\"");
            XEvent event;
            while (XPending(display_) > 0)
                XNextEvent(display_, &event);
        }
    }

 private:
    // The topmost window that has a title and can be seen, if it is that one, else 0.
    Window Find(const std::string& title) {
        Window root = 0, parent = 0, found = 0;
        Window* windows = nullptr;  // bottom to top
        unsigned count = 0;
        if (XQueryTree(display_, DefaultRootWindow(display_), &root, &parent, &windows, &count) == 0)
            return 0;
        for (unsigned i = 0; i < count; ++i) {
            const std::string shown = Shown(windows[i]) ? TitleOf(windows[i]) : std::string();
            if (shown.empty()) continue;
            top_ = shown;
            found = shown == title ? windows[i] : 0;
        }
        if (windows) XFree(windows);
        return found;
    }

    bool Shown(Window window) {
        XWindowAttributes attributes;
        return XGetWindowAttributes(display_, window, &attributes) != 0 && attributes.map_state == IsViewable;
    }

    std::string TitleOf(Window window) {
        Atom type = None;
        int format = 0;
        unsigned long length = 0, rest = 0;
        unsigned char* text = nullptr;
        XGetWindowProperty(display_, window, XInternAtom(display_, "_NET_WM_NAME", False), 0, 256, False,
                           XInternAtom(display_, "UTF8_STRING", False), &type, &format, &length, &rest,
                           &text);
        const std::string title = text ? reinterpret_cast<const char*>(text) : "";
        if (text) XFree(text);
        return title;
    }

    Display* display_;
    std::string top_;  // title of the topmost window at the last look
};

bool IsKeyName(const std::string& word) {
    return word.size() > 1 && XStringToKeysym(word.c_str()) != NoSymbol;
}

void Press(Screen& screen, Hand& hand, const std::string& step) {
    const auto colon = step.find(": ");
    if (colon == std::string::npos) throw std::runtime_error("\"" + step + "\" is not TITLE: KEYS");
    hand.ComeBackTo(screen.Await(step.substr(0, colon)));
    std::istringstream words(step.substr(colon + 2));
    for (std::string word; words >> word;) {
        if (IsKeyName(word)) {
            hand.Press(word);
        } else {
            hand.Type(word);
        }
    }
}

}  // namespace
}  // namespace kq

int main(int argc, char** argv) {
    try {
        // A window that goes while it is looked at is no reason to end.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        kq::Screen screen;
        kq::Hand hand;
        for (int i = 1; i < argc; ++i)
            kq::Press(screen, hand, argv[i]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "press_keys: " << error.what() << "\n";
        return 1;
    }
}
