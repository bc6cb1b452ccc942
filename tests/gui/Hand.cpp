#include "gui/Hand.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <stdexcept>

namespace kq {

struct Hand::Server {
    Server() : display(XOpenDisplay(nullptr)) {
        if (!display) throw std::runtime_error("There is no display");
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() { XCloseDisplay(display); }

    void Key(KeySym key, bool down) {
        XTestFakeKeyEvent(display, XKeysymToKeycode(display, key), down ? True : False, CurrentTime);
    }
    bool NeedsShift(KeySym key) {
        const KeyCode code = XKeysymToKeycode(display, key);
        return XkbKeycodeToKeysym(display, code, 0, 0) != key &&
               XkbKeycodeToKeysym(display, code, 0, 1) == key;
    }
    void Stroke(KeySym key) {
        const bool shift = NeedsShift(key);
        if (shift) Key(XK_Shift_L, true);
        Key(key, true);
        Key(key, false);
        if (shift) Key(XK_Shift_L, false);
    }
    void MoveTo(int x, int y) { XTestFakeMotionEvent(display, -1, x, y, CurrentTime); }
    void Button() {
        XTestFakeButtonEvent(display, 1, True, CurrentTime);
        XTestFakeButtonEvent(display, 1, False, CurrentTime);
    }

    Display* display;
    Window other = 0;  // gone with the connection
};

Hand::Hand() : server_(std::make_unique<Server>()) {}
Hand::~Hand() = default;

void Hand::Click(int x, int y) {
    server_->MoveTo(x, y);
    server_->Button();
    XSync(server_->display, False);
}

void Hand::DoubleClick(int x, int y) {
    server_->MoveTo(x, y);
    server_->Button();
    server_->Button();
    XSync(server_->display, False);
}

void Hand::Press(const std::string& key, const std::string& held) {
    const KeySym symbol = XStringToKeysym(key.c_str());
    if (symbol == NoSymbol) throw std::runtime_error("There is no key " + key);
    const KeySym holding = held.empty() ? NoSymbol : XStringToKeysym(held.c_str());
    if (holding != NoSymbol) server_->Key(holding, true);
    server_->Stroke(symbol);
    if (holding != NoSymbol) server_->Key(holding, false);
    XSync(server_->display, False);
}

void Hand::Type(const std::string& text) {
    // Printable 7-bit characters are their own key symbols.
    for (const char character : text)
        server_->Stroke(static_cast<unsigned char>(character));
    XSync(server_->display, False);
}

void Hand::GoToAnotherProgram() {
    Display* const display = server_->display;
    if (server_->other == 0) {
        server_->other = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
        XMapWindow(display, server_->other);
        XSync(display, False);
    }
    XSetInputFocus(display, server_->other, RevertToParent, CurrentTime);
    XSync(display, False);
}

void Hand::ComeBackTo(unsigned long window) {
    XSetInputFocus(server_->display, window, RevertToParent, CurrentTime);
    XSync(server_->display, False);
}

void Hand::PutIntoFrame(unsigned long window, int edge) {
    Display* const display = server_->display;
    const Window root = DefaultRootWindow(display);
    XWindowAttributes inner;
    int x = 0, y = 0;
    Window child = 0;
    XGetWindowAttributes(display, window, &inner);
    XTranslateCoordinates(display, window, root, 0, 0, &x, &y, &child);
    const Window frame =
        XCreateSimpleWindow(display, root, x, y, static_cast<unsigned>(inner.width + 2 * edge),
                            static_cast<unsigned>(inner.height + 4 * edge), 0, 0, 0);
    XMapWindow(display, frame);
    XReparentWindow(display, window, frame, edge, 3 * edge);
    const long extents[] = {edge, edge, 3 * edge, edge};
    XChangeProperty(display, window, XInternAtom(display, "_NET_FRAME_EXTENTS", False), XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(extents), 4);
    XEvent told{};
    told.xconfigure.type = ConfigureNotify;
    told.xconfigure.event = told.xconfigure.window = window;
    told.xconfigure.x = x + edge;
    told.xconfigure.y = y + 3 * edge;
    told.xconfigure.width = inner.width;
    told.xconfigure.height = inner.height;
    XSendEvent(display, window, False, StructureNotifyMask, &told);
    XSync(display, False);
}

void Hand::CloseBox(unsigned long window) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(server_->display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(server_->display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(server_->display, window, False, NoEventMask, &event);
    XSync(server_->display, False);
}

}  // namespace kq
