// What all dialogs share.
//
// A dialog object may be destroyed while its window is open, by code that the event loop runs in the
// meantime: the window closes, with a message box or a further dialog of it, and the call that shows it
// returns as if the user had cancelled. One window of an object at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>

#include "forms/DialogHost.h"
#include "forms/Form.h"
#include "messages/Texts.h"
#include "messages/boxes/MessageBoxes.h"

namespace kq {

class Dialog {
 public:
    explicit Dialog(PlatformPtr platform) : platform_(std::move(platform)) {}
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    ~Dialog();

 protected:
    friend class Window;
    PlatformPtr platform_;
    std::weak_ptr<Form> form_;
    Owner life_;
};

// A loaded form with its texts, for one showing. It is unloaded when this object goes, in every case; the
// dialog object may go earlier.
class Window {
 public:
    Window(Dialog& dialog, const FormRow& row);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window() { form_->Unload(); }

 protected:
    Control& At(std::string_view name) { return form_->At(name); }
    void OnClick(std::string_view button, Control::Handler handler) {
        At(button).OnClick(std::move(handler));
    }
    void SelectsAllOnFocus(std::string_view box);
    // After a message about what is in a box: the focus goes there, its whole text is selected.
    void GoBackTo(Control& box);
    // Whether the dialog object has gone: nothing is asked or done any more.
    bool Abandoned() const { return dialog_.expired(); }
    // A message of a dialog that gives it no title: caption "KQAppSessionLib", exclamation icon, OK.
    void Warn(std::int32_t text_id);

    const PlatformPtr platform_;
    const std::shared_ptr<Form> form_;
    const Texts texts_;
    const MessageBoxes boxes_;  // they close with the form

 private:
    const std::weak_ptr<const void> dialog_;
};

// A window whose user confirms or cancels. The default button of its row confirms and closes it, once the
// window accepts what it holds. The cancel button and the close box close it as well; so does the end of the
// dialog object, or of the loop. In these cases nothing is confirmed and the caller's values stay.
class OKCancelWindow : public Window {
 protected:
    OKCancelWindow(Dialog& dialog, const FormRow& row);

    // Shows the window until it is closed. True when the user confirmed. Both arguments may be null.
    bool Confirmed(const IconPtr& icon, const std::shared_ptr<Form>& owner = nullptr);
    // Whether what the window holds can be confirmed. If not, it says why and stays open.
    virtual bool Accepts() = 0;

 private:
    bool confirmed_ = false;
};

}  // namespace kq
