// A user at real windows: types and clicks, and waits until the program has taken note of it.
#pragma once

#include <string>

#include "gui/Hand.h"
#include "gui/Stage.h"

namespace kq {

class User {
 public:
    explicit User(Stage& stage) : stage_(stage) {}

    // Clicks on a control, in its middle.
    void Clicks(QWidget& window, const std::string& control);
    // The same, but on a button by its standard caption of a message box.
    void Answers(QWidget& box, const std::string& caption);
    // Clicks into a box, unless the focus is there, and types; what stood there goes.
    void Types(QWidget& window, const std::string& box, const std::string& text);
    // Types where the focus is, and waits until `box` holds `expected`.
    void TypesHere(QWidget& window, const std::string& box, const std::string& text,
                   const std::string& expected);
    void Presses(const std::string& key, const std::string& held = {}) { hand_.Press(key, held); }
    void ClicksItem(QWidget& window, const std::string& list, int row, bool twice = false);
    void GoesToAnotherProgram() { hand_.GoToAnotherProgram(); }
    void ComesBackTo(QWidget& window) { hand_.ComeBackTo(window.winId()); }
    void ClosesByTheSystem(QWidget& window) { hand_.CloseBox(window.winId()); }
    // Waits until the control has the focus.
    void SeesFocusOn(QWidget& window, const std::string& control);

 private:
    void AwaitOnDisplay(const QWidget& widget);

    Stage& stage_;
    Hand hand_;
};

}  // namespace kq
