// Asking the user. A program without a face has no DialogHost.
#pragma once

#include <cstdint>
#include <string>

namespace kq {

// Buttons and icon of a message box in the platform's numbering; the first button is always the default.
enum class BoxStyle : std::int32_t {
    Error = 16,          // OK, stop icon
    Warning = 48,        // OK, exclamation icon
    YesNoCancel = 51,    // Yes, No, Cancel, exclamation icon
    YesNo = 52,          // Yes, No, exclamation icon
    Information = 64,    // OK, information icon
};

enum class BoxButton : std::int32_t { OK = 1, Cancel = 2, Yes = 6, No = 7 };

class DialogHost {
 public:
    virtual ~DialogHost() = default;
    // Shows a modal box and returns the button pressed. The event loop keeps running meanwhile.
    virtual BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style) = 0;
};

}  // namespace kq
