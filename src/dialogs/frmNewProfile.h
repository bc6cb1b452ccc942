// Asks for the name of a profile. What is typed is filtered, so that a name can always be a part of a file
// name and of a command line.
#pragma once

#include <memory>
#include <string>

#include "dialogs/Dialog.h"

namespace kq {

class frmNewProfile : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // `name` is what the box starts with. True when the user confirmed a name that is not blank; `name` is
    // then that name without blanks around it. On false it stays. `owner` waits meanwhile.
    bool GetNewProfile(std::string& name, const std::shared_ptr<Form>& owner);
    // The same with the texts for renaming.
    bool RenameProfile(std::string& name, const std::shared_ptr<Form>& owner);
};

// What the filter leaves of a text: printable 7-bit characters other than * | \ / : " < > ? '
std::string AllowedInProfileName(std::string_view text);

}  // namespace kq
