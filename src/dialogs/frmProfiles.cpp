// Every operation may show another dialog, during which the collection may change; each looks again at what
// it is about to change. No profile is needed to leave but one to go on, so an empty collection is explained
// before and questioned after.
#include "dialogs/frmProfiles.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "dialogs/UniqueName.h"
#include "dialogs/frmNewProfile.h"
#include "platform/Machine.h"
#include "platform/Shortcuts.h"

namespace kq {
namespace {

constexpr std::int32_t kWhatProfilesAre = 423;
constexpr std::int32_t kNoProfileYet = 424;
constexpr std::int32_t kShortcutTitle = 709;
constexpr std::int32_t kShortcutDescription = 710;
constexpr std::int32_t kRemoveTitle = 711;
constexpr std::int32_t kRemoveQuestion = 712;
constexpr std::int32_t kNameTaken = 750;

constexpr std::string_view kSwitch = "/PROFILE ";

class ProfilesWindow : public OKCancelWindow {
 public:
    ProfilesWindow(Dialog& dialog, std::shared_ptr<Profiles> profiles, std::shared_ptr<Profile>& current,
                   const ProgramInfo& program, bool& changed)
        : OKCancelWindow(dialog, frmProfiles::Row()),
          profiles_(std::move(profiles)),
          current_(current),
          program_(program),
          changed_(changed) {
        OnClick("cmdNew", [this] { cmdNew_Click(); });
        OnClick("cmdCopy", [this] { cmdCopy_Click(); });
        OnClick("cmdRename", [this] { cmdRename_Click(); });
        OnClick("cmdRemove", [this] { cmdRemove_Click(); });
        OnClick("cmdShortcut", [this] { cmdShortcut_Click(); });
        list_.OnSelect([this] { EnableButtons(); });
        At("Timer1").OnTick([this] { EnableButtons(); });
    }

    bool Run(const std::string& command_str, const IconPtr& icon) {
        const std::string named = ProfileInCommand(command_str);
        const bool is_named = !named.empty() && profiles_->Exists(named);
        Fill(is_named ? named : current_ ? current_->Name() : std::string());
        At("Timer1").SetTimerEnabled(true);
        if (profiles_->Count() == 0) boxes_.ShowInfo(kWhatProfilesAre);
        if (Abandoned()) return false;
        do {
            form_->SetFocus(profiles_->Count() == 0 ? At("cmdNew") : list_);
            if (Confirmed(icon)) return true;
        } while (MustGoOn());
        return false;
    }

 private:
    bool MustGoOn() {
        if (profiles_->Count() != 0 || Abandoned() || platform_->Loop()->Quitting()) return false;
        return boxes_.AskYesNo(kNoProfileYet) && !Abandoned();
    }

    void Fill(const std::string& selected) {
        std::vector<std::string> names;
        std::ptrdiff_t index = Control::kNoItem;
        for (const auto& profile : *profiles_) {
            if (profile->Name() == selected) index = std::ssize(names);
            names.push_back(profile->Name());
        }
        list_.SetItems(std::move(names));
        list_.SelectItem(index);
        EnableButtons();
    }

    // Null without a selection, and when the selected profile has gone meanwhile.
    std::shared_ptr<Profile> Selected() const {
        if (list_.SelectedItem() == Control::kNoItem) return nullptr;
        const std::string& name = list_.Items()[static_cast<std::size_t>(list_.SelectedItem())];
        return profiles_->Exists(name) ? profiles_->Item(name) : nullptr;
    }

    void EnableButtons() {
        const bool selected = Selected() != nullptr;
        for (const auto button : {"cmdChoose", "cmdCopy", "cmdRename", "cmdRemove"})
            At(button).SetEnabled(selected);
        const bool can_make = platform_->Parts().shortcuts && !program_.exe_name.empty();
        At("cmdShortcut").SetEnabled(selected && can_make);
    }

    // Also once there is nobody any more to take it.
    bool IsTaken(const std::string& name) {
        if (Abandoned()) return true;
        if (!profiles_->Exists(name)) return false;
        boxes_.ShowWarning(kNameTaken, {name});
        form_->SetFocus(list_);
        return true;
    }

    void Changed(const std::string& selected) {
        changed_ = true;
        Fill(selected);
    }

    bool Accepts() override {
        const auto profile = Selected();
        if (profile) current_ = profile;
        return profile != nullptr;
    }

    void cmdNew_Click() {
        std::string name;
        if (!frmNewProfile(platform_).GetNewProfile(name, form_) || IsTaken(name)) return;
        profiles_->Add(std::make_shared<Profile>(name));
        Changed(name);
    }

    void cmdCopy_Click() {
        const auto original = Selected();
        if (!original) return;
        std::string name = NameForCopy(original->Name(),
                                       [this](const std::string& taken) { return profiles_->Exists(taken); });
        if (name.empty()) return;
        if (!frmNewProfile(platform_).GetNewProfile(name, form_) || IsTaken(name)) return;
        profiles_->Add(original->Copy(name));
        Changed(name);
    }

    void cmdRename_Click() {
        const auto profile = Selected();
        if (!profile) return;
        const std::string old_name = profile->Name();
        std::string name = old_name;
        if (!frmNewProfile(platform_).RenameProfile(name, form_) || name == old_name || IsTaken(name)) return;
        if (!profiles_->Exists(old_name)) return;
        profiles_->Rename(old_name, name);
        Changed(name);
    }

    void cmdRemove_Click() {
        const auto profile = Selected();
        if (!profile) return;
        const std::string name = profile->Name();
        if (!boxes_.AskYesNoTitled(kRemoveQuestion, kRemoveTitle, {name})) return;
        if (Abandoned() || !profiles_->Exists(name)) return;
        profiles_->Remove(name);
        if (current_ == profile) current_.reset();
        Changed({});
    }

    void cmdShortcut_Click() {
        const auto profile = Selected();
        const auto shortcuts = platform_->Parts().shortcuts;
        if (!profile || !shortcuts) return;
        const std::string name = profile->Name();
        const auto path = platform_->Parts().dialogs->AskSavePath(
            {.title = texts_.Text(kShortcutTitle, {name}),
             .folder = shortcuts->DesktopFolder().value_or(std::string()),
             .filter = "Shortcut|*." + shortcuts->Extension(),
             .extension = shortcuts->Extension(),
             .file_name = AllowedInProfileName(name)},
            form_->Hidden);
        if (!path || Abandoned()) return;
        // Where it cannot be made there is none; nobody is told.
        shortcuts->Create(*path,
                          {.folder = program_.path,
                           .program = program_.exe_name,
                           .arguments = "/Profile \"" + name + "\"",
                           .description = texts_.Text(kShortcutDescription, {program_.product_name, name})});
    }

    const std::shared_ptr<Profiles> profiles_;
    std::shared_ptr<Profile>& current_;
    const ProgramInfo program_;
    bool& changed_;
    Control& list_ = At("lvProfiles");
};

}  // namespace

const FormRow& frmProfiles::Row() {
    using enum ControlKind;
    static const FormRow row{
        .name = "frmProfiles",
        .caption_id = 700,
        .default_button = "cmdChoose",
        .cancel_button = "cmdCancel",
        .first_focus = "lvProfiles",
        .controls = {
            {.kind = Label, .name = "lblIntro", .text_id = 701, .buddy = "lvProfiles"},
            {.kind = ListView, .name = "lvProfiles"},
            {.kind = ListView, .name = "lstProfiles", .visible = false},
            {.kind = Button, .name = "cmdNew", .text_id = 703, .place = Place::Side},
            {.kind = Button, .name = "cmdCopy", .text_id = 704, .place = Place::Side},
            {.kind = Button, .name = "cmdRename", .text_id = 705, .place = Place::Side},
            {.kind = Button, .name = "cmdRemove", .text_id = 706, .place = Place::Side},
            {.kind = Button, .name = "cmdShortcut", .text_id = 707, .place = Place::Side},
            {.kind = Button, .name = "cmdChoose", .text_id = 702, .place = Place::ButtonRow},
            {.kind = Button, .name = "cmdCancel", .text_id = 708, .place = Place::ButtonRow},
            {.kind = Timer, .name = "Timer1", .interval = 100},
        }};
    return row;
}

std::string ProfileInCommand(std::string_view command_str) {
    const auto at = UpperCase(command_str).find(kSwitch);
    if (at == std::string::npos) return {};
    const std::string_view rest = Trim(command_str.substr(at + kSwitch.size()));
    if (rest.empty() || rest.front() != '"') return std::string(rest);
    return std::string(rest.substr(1, rest.find('"', 1) - 1));
}

bool frmProfiles::GetProfile(const std::shared_ptr<Profiles>& profiles, std::shared_ptr<Profile>& current,
                             const std::string& command_str, const ProgramInfo& program, const IconPtr& icon,
                             bool& changed) {
    if (!profiles) Raise(RuntimeError::ObjectNotSet);
    changed = false;
    return ProfilesWindow(*this, profiles, current, program, changed).Run(command_str, icon);
}

}  // namespace kq
