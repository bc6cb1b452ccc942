// A machine with windows in a language, and a user who acts as soon as a window has come.
#pragma once

#include <QTimer>
#include <QWidget>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include <kqappsession/Platform.h>

#include "platform/Patience.h"

namespace kq {

inline constexpr std::int32_t kEnglish = 1033;
inline constexpr std::int32_t kPseudoLanguage = 1281;  // accented and longer
// All nine and the one that nobody speaks.
inline constexpr std::int32_t kLanguages[] = {1033,  1046,  2058,  9226,  10250,
                                              11274, 13322, 14346, 15370, kPseudoLanguage};

class Stage {
 public:
    using Act = std::function<void(QWidget&)>;

    explicit Stage(std::int32_t language = kEnglish);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    const PlatformPtr& Machine() const { return machine_; }
    EventLoop& Loop() const { return *machine_->Loop(); }
    // The next act of the user: once the window of this name (a form's, "MessageBox", "SaveDialog") is the
    // modal one on top, or stands above all others.
    void When(const std::string& window, Act act, Milliseconds patience = kPatience) {
        acts_.push_back({window, std::move(act), patience});
    }
    // How scenes close their windows; by the program itself unless a user does it.
    void SetClosing(Act closing) { closing_ = std::move(closing); }
    void Close(QWidget& window) const { closing_(window); }
    // Runs the loop until it holds. Throws when it does not come to that, which fails the test.
    void Await(const std::function<bool()>& done, const std::string& what);

 private:
    struct Planned {
        std::string window;
        Act act;
        Milliseconds patience;
    };
    void Look();

    PlatformPtr machine_;
    std::deque<Planned> acts_;
    Act closing_ = [](QWidget& window) { window.close(); };
    bool acting_ = false;
    QTimer eyes_;
    std::chrono::steady_clock::time_point last_act_ = std::chrono::steady_clock::now();
};

// The visible window of this name, null when there is none.
QWidget* FindWindow(const std::string& name);
// A control of a window by its name; fails the test when there is none.
template <class T = QWidget>
T& In(QWidget& window, const std::string& control) {
    T* const found = window.findChild<T*>(QString::fromStdString(control));
    if (!found) throw std::runtime_error("There is no " + control);
    return *found;
}

}  // namespace kq
