// The window lives from the first ShowWait to HideWait, whether or not the user closes it in between.
#include "dialogs/frmWait.h"

#include <limits>

#include <kqappsession/Error.h>

namespace kq {
namespace {

class WaitWindow : public Window {
 public:
    explicit WaitWindow(frmWait& dialog) : Window(dialog, frmWait::Row()) {
        form_->OnClosed([&dialog] { dialog.Closed(); });  // which holds this window
    }

    void Show(const std::string& caption, const std::string& message) {
        form_->SetCaption(caption);
        At("lblPleaseWait").SetText(message);
        form_->ShowTopmost();
    }
};

}  // namespace

const FormRow& frmWait::Row() {
    static const FormRow row{.name = "frmWait",
                             .controls = {{.kind = ControlKind::Label, .name = "lblPleaseWait"}}};
    return row;
}

void frmWait::ShowWait(std::int32_t id, const Args& args) {
    if (id == std::numeric_limits<std::int32_t>::max()) Raise(RuntimeError::Overflow);
    const Texts texts(platform_);
    const std::string caption = texts.LoadText(id);
    const std::string message = texts.Text(id + 1, args);
    if (!window_) window_ = std::make_unique<WaitWindow>(*this);
    static_cast<WaitWindow&>(*window_).Show(caption, message);
}

void frmWait::HideWait() {
    window_.reset();
}

}  // namespace kq
