// Shows the user what is being waited for: a window above all others, without buttons. It holds nothing up;
// whoever shows it decides what its closing means.
#pragma once

#include <cstdint>
#include <memory>

#include "dialogs/Dialog.h"

namespace kq {

class frmWait : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // Shows the texts of `id` (caption) and `id` + 1 (message, with the arguments), and returns. While the
    // window is up only the texts change; when the user has closed it, it comes again. Raises
    // RuntimeError::Overflow for the largest id, RuntimeError::ResourceNotFound for one without texts,
    // RuntimeError::InvalidProcedureCall in a program without a face.
    void ShowWait(std::int32_t id, const Args& args = {});
    // Nothing happens when the window is not up.
    void HideWait();
    // The user has closed the window, or pressed Escape in it.
    Signal<> Closed;

 private:
    std::unique_ptr<Window> window_;
};

}  // namespace kq
