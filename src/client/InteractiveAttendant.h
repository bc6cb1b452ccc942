// The attendant of a procedure with a user: every failure becomes a question, details come from dialogs.
//
// In a program without dialogs it shows nothing and goes on; a question that would have to be asked raises
// RuntimeError::InvalidProcedureCall, with the question as its description.
#pragma once

#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "client/LoginPrompts.h"
#include "dialogs/frmWait.h"
#include "messages/boxes/MessageBoxes.h"

namespace kq {

class InteractiveAttendant : public LoginAttendant {
 public:
    explicit InteractiveAttendant(ClientState& state)
        : state_(state), boxes_(state.platform, &state.Terminated), wait_(state.platform) {
        wait_.Closed.Connect(owner_, [this] { state_.GiveUp(); });
    }

    LoginStates Meet(LoginFailure failure, const Args& question, const Args& error) override;
    LoginStates MeetUnexpected(std::int32_t text, const Error& error) override;
    void ShowWait(std::int32_t caption) override {
        if (state_.platform->Interactive()) wait_.ShowWait(caption);
    }
    void HideWait() override { wait_.HideWait(); }
    bool GetLoginInfo(SessConfig& config, const SystemLoginArguments& arguments, bool use_profiles,
                      LoginDetails& details) override;
    std::optional<Secret> GetNewPassword(const SystemLoginArguments& arguments) override;
    bool ChooseProfile(const std::shared_ptr<Profiles>& profiles, const SystemLoginArguments& arguments,
                       std::shared_ptr<Profile>& current, bool& changed) override;
    std::optional<std::string> DownloadClient(const std::shared_ptr<APClient>& client,
                                              bool& try_again) override;
    bool RetryUpload(const std::string& description) override;

 private:
    ClientState& state_;
    MessageBoxes boxes_;
    frmWait wait_;
    std::optional<PromptedSettings> settings_;
    Owner owner_;
};

}  // namespace kq
