// Keys and mouse of the X server's test extension: to a program they are the user's own.
#pragma once

#include <memory>
#include <string>

namespace kq {

class Hand {
 public:
    Hand();
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;
    ~Hand();

    void Click(int x, int y);  // in pixels of the screen
    void DoubleClick(int x, int y);
    // A key by its X name ("Return", "Tab", "a"), with the names of those held down meanwhile ("Alt_L").
    void Press(const std::string& key, const std::string& held = {});
    void Type(const std::string& text);  // printable 7-bit characters
    // The keyboard goes to a window of another program, and back to one of this.
    void GoToAnotherProgram();
    void ComeBackTo(unsigned long window);
    // What a window manager does some time after a window has come: puts a frame around it. The edges are as
    // wide as this, the upper one thrice as wide. The frame is gone with the hand, and the window with it.
    void PutIntoFrame(unsigned long window, int edge);
    // What a window manager does when its close box is clicked.
    void CloseBox(unsigned long window);

 private:
    struct Server;
    std::unique_ptr<Server> server_;
};

}  // namespace kq
