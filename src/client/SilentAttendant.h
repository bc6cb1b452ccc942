// The attendant of a procedure without a user: every failure is raised.
#pragma once

#include "client/LoginAttendant.h"

namespace kq {

class SilentAttendant : public LoginAttendant {
 public:
    explicit SilentAttendant(PlatformPtr platform) : texts_(std::move(platform)) {}

    LoginStates Meet(LoginFailure failure, const Args& question, const Args& error) override;
    LoginStates MeetUnexpected(std::int32_t text, const Error& error) override;
    void ShowWait(std::int32_t) override {}
    void HideWait() override {}
    bool GetLoginInfo(SessConfig& config, const SystemLoginArguments& arguments, bool use_profiles,
                      LoginDetails& details) override;
    std::optional<Secret> GetNewPassword(const SystemLoginArguments& arguments) override;
    bool ChooseProfile(const std::shared_ptr<Profiles>& profiles, const SystemLoginArguments& arguments,
                       std::shared_ptr<Profile>& current, bool& changed) override;
    std::optional<std::string> DownloadClient(const std::shared_ptr<APClient>& client,
                                              bool& try_again) override;
    bool RetryUpload(const std::string& description) override;

 private:
    Texts texts_;
};

}  // namespace kq
