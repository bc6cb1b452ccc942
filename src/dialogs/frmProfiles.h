// The user chooses the profile of the session and manages all of them: new, copy, rename, remove, and a
// shortcut on the desktop that starts the program with a profile.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kqappsession/WebData.h>

#include "dialogs/Dialog.h"

namespace kq {

// The calling program, for shortcuts.
struct ProgramInfo {
    std::string product_name;
    std::string path;      // of its folder
    std::string exe_name;  // empty: no shortcuts can be made
};

class frmProfiles : public Dialog {
 public:
    static const FormRow& Row();
    using Dialog::Dialog;

    // True when the user chose a profile; `current` is then that one. What the user edits is edited
    // immediately and stays when the dialog is cancelled: `changed` reports whether a profile was added,
    // renamed or removed, and `current` is null when that profile was removed. Choosing is not a change; the
    // collection's last used name is the caller's to compare and set.
    // The profile that `command_str` names, when there is one, else `current` is selected at first. `icon`
    // may be null. Raises RuntimeError::ObjectNotSet without a collection.
    bool GetProfile(const std::shared_ptr<Profiles>& profiles, std::shared_ptr<Profile>& current,
                    const std::string& command_str, const ProgramInfo& program, const IconPtr& icon,
                    bool& changed);
};

// The name after the switch "/Profile " (in any case) of a command line: up to the closing quotation mark
// when it begins with one, else to the end, without blanks around it. Empty when there is no switch.
std::string ProfileInCommand(std::string_view command_str);

}  // namespace kq
