// A form on a terminal.
#pragma once

#include <memory>
#include <string>

#include "forms/Form.h"
#include "forms/tty/TtyPrompter.h"

namespace kq {

// Prints changes; AskForm asks the questions of a modal form.
class TtyFormView final : public FormView {
 public:
    TtyFormView(Form& form, std::shared_ptr<TtyPrompter> prompter);
    void Changed(const Control& control, ControlChange what) override;
    void Changed(FormChange what) override;
    void Focus(const Control& control) override;

 private:
    void Tell(const Form& form);
    void TellProgress(const Progress& progress);

    std::weak_ptr<Form> form_;
    std::shared_ptr<TtyPrompter> prompter_;
    std::string told_;  // the last change that was printed
    int percent_ = -1;  // printed last; less than 0: none
};

// Asks for everything on the form until it is hidden or the loop quits.
void AskForm(Form& form, TtyPrompter& prompter);

}  // namespace kq
