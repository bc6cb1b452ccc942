// Who answers for a login procedure: a user at the dialogs, or nobody.
//
// The steps of the procedures never ask which. The silent attendant answers from the arguments and the
// settings and raises failures as errors; one with a face asks.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessClient.h>

#include "client/LoginFailures.h"
#include "dialogs/LoginAnswer.h"
#include "messages/ServerSettings.h"
#include "messages/Texts.h"

namespace kq {

class SessConfig;

// Where and as whom a login is made.
struct LoginDetails : LoginAnswer {
    ServerSettings server;
};

class LoginAttendant {
 public:
    virtual ~LoginAttendant() = default;

    // The state that follows a failure: `question` are the arguments of its question, `error` those of its
    // error.
    virtual LoginStates Meet(LoginFailure failure, const Args& question, const Args& error) = 0;
    // The state after an error that no step expects; text 406 or 409 asks. Called inside the catch block.
    virtual LoginStates MeetUnexpected(std::int32_t text, const Error& error) = 0;

    // The wait window with the texts `caption` and `caption` + 1. Questions hide it.
    virtual void ShowWait(std::int32_t caption) = 0;
    virtual void HideWait() = 0;

    // Fills in the details; false when the user gives up.
    virtual bool GetLoginInfo(SessConfig& config, const SystemLoginArguments& arguments, bool use_profiles,
                              LoginDetails& details) = 0;
    // The new password; nothing when the user gives up.
    virtual std::optional<Secret> GetNewPassword(const SystemLoginArguments& arguments) = 0;
    // Sets `current` to a profile of the collection; false when the user gives up. `changed`: the collection
    // was edited.
    virtual bool ChooseProfile(const std::shared_ptr<Profiles>& profiles,
                               const SystemLoginArguments& arguments, std::shared_ptr<Profile>& current,
                               bool& changed) = 0;
    // Fetches a newer client over the login connection: its path, or nothing; `try_again` is the user's
    // answer then.
    virtual std::optional<std::string> DownloadClient(const std::shared_ptr<APClient>& client,
                                                      bool& try_again) = 0;
    // The upload of the profiles could not connect: whether to try again.
    virtual bool RetryUpload(const std::string& description) = 0;
};

// The attendant of a procedure.
std::unique_ptr<LoginAttendant> MakeAttendant(bool interactive, ClientState& state);

}  // namespace kq
