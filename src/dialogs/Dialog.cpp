// Loading a form and the plain message box.
#include "dialogs/Dialog.h"

#include <kqappsession/Error.h>

#include "platform/Machine.h"

namespace kq {

Dialog::~Dialog() {
    if (const auto form = form_.lock()) form->Hide();
}

Window::Window(Dialog& dialog, const FormRow& row)
    : platform_(dialog.platform_),
      form_(Form::Load(platform_, row)),
      texts_(platform_),
      boxes_(platform_, &form_->Hidden),
      dialog_(dialog.life_.Life()) {
    if (row.caption_id != 0) form_->SetCaption(texts_.LoadText(row.caption_id));
    for (const auto& control : row.controls) {
        if (control.text_id != 0) At(control.name).SetText(texts_.LoadText(control.text_id));
        if (control.other_text_id != 0) At(control.name).SetOtherText(texts_.LoadText(control.other_text_id));
    }
    dialog.form_ = form_;
}

void Window::SelectsAllOnFocus(std::string_view box) {
    Control& control = At(box);
    control.OnGotFocus([&control] { control.SelectAll(); });
}

void Window::GoBackTo(Control& box) {
    form_->SetFocus(box);
    box.SelectAll();
}

void Window::Warn(std::int32_t text_id) {
    const auto dialogs = platform_->Parts().dialogs;
    dialogs->ShowMessageBox(texts_.LoadText(text_id), std::string(kLibrarySource), BoxStyle::Warning,
                            form_->Hidden);
}

OKCancelWindow::OKCancelWindow(Dialog& dialog, const FormRow& row) : Window(dialog, row) {
    OnClick(row.default_button, [this] {
        if (!Accepts()) return;
        confirmed_ = true;
        form_->Hide();
    });
    OnClick(row.cancel_button, [this] { form_->Hide(); });
}

bool OKCancelWindow::Confirmed(const IconPtr& icon, const std::shared_ptr<Form>& owner) {
    if (icon) form_->SetIcon(icon);
    form_->ShowModal(owner);
    return confirmed_;
}

}  // namespace kq
