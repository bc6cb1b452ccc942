// Questions and dialogs. What a rule says about a silent procedure's error plays no part here.
#include "client/InteractiveAttendant.h"

#include "client/TerminableDialog.h"
#include "dialogs/frmDownload.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmProfiles.h"

namespace kq {

namespace {

constexpr std::int32_t kCannotConnect = 411;

std::string PropertyOf(const SystemLoginArguments& arguments, std::string_view name) {
    return arguments.AppObj ? arguments.AppObj->Property(name).value_or("") : std::string();
}

}  // namespace

LoginStates InteractiveAttendant::Meet(LoginFailure failure, const Args& question, const Args&) {
    const FailureRule& rule = RuleOf(failure);
    switch (rule.question) {
        case Question::None:
            return rule.yes;
        case Question::Information:
            boxes_.ShowInfo(rule.text, question);
            return rule.no;
        case Question::YesNo:
            return boxes_.AskYesNo(rule.text, question) ? rule.yes : rule.no;
        case Question::YesNoCancel:
            break;
    }
    switch (boxes_.AskYesNoCancel(rule.text, question)) {
        case BoxButton::Yes:
            return rule.yes;
        case BoxButton::No:
            return rule.no;
        default:
            return rule.cancel;
    }
}

LoginStates InteractiveAttendant::MeetUnexpected(std::int32_t text, const Error& error) {
    if (!state_.platform->Interactive()) throw;
    return boxes_.AskYesNo(text, {state_.texts.ForUser(error)}) ? lsGetLoginInfo : lsFailed;
}

bool InteractiveAttendant::GetLoginInfo(SessConfig& config, const SystemLoginArguments& arguments,
                                        bool use_profiles, LoginDetails& details) {
    if (!settings_) settings_.emplace(state_, config);
    const auto terminations = state_.Terminations();
    if (!AskServerAddress(state_, *settings_, false)) return false;
    // A warning that the settings cannot be saved may have been closed by the end of the client.
    if (state_.Terminations() != terminations) return false;
    if (!AskLoginDetails(state_, *settings_, use_profiles, arguments.AppIcon, details)) return false;
    details.server = settings_->Read();
    if (const auto given = arguments.UseASServerForLogin) details.server.use_as_server_for_login = *given;
    return true;
}

std::optional<Secret> InteractiveAttendant::GetNewPassword(const SystemLoginArguments& arguments) {
    Secret old_password;
    Secret new_password;
    TerminableDialog<frmPassword> dialog(state_.platform, state_.Terminated);
    if (!dialog->GetPassword(old_password, new_password, arguments.AppIcon)) return std::nullopt;
    return new_password;
}

bool InteractiveAttendant::ChooseProfile(const std::shared_ptr<Profiles>& profiles,
                                         const SystemLoginArguments& arguments,
                                         std::shared_ptr<Profile>& current, bool& changed) {
    const ProgramInfo program{PropertyOf(arguments, "ProductName"), PropertyOf(arguments, "Path"),
                              PropertyOf(arguments, "EXEName")};
    TerminableDialog<frmProfiles> dialog(state_.platform, state_.Terminated);
    return dialog->GetProfile(profiles, current, arguments.CommandStr, program, arguments.AppIcon, changed);
}

std::optional<std::string> InteractiveAttendant::DownloadClient(const std::shared_ptr<APClient>& client,
                                                                bool& try_again) {
    std::string path;
    TerminableDialog<frmDownload> dialog(state_.platform, state_.Terminated);
    if (!dialog->DownloadClient(client, path, try_again)) return std::nullopt;
    return path;
}

bool InteractiveAttendant::RetryUpload(const std::string&) {
    return boxes_.AskYesNo(kCannotConnect);
}

}  // namespace kq
