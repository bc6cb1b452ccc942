// What the client asks its user about settings: where the login server is, and who logs in.
//
// The settings file is read before and written after each prompt; a prompt that the user cancels writes
// nothing, and so does one that the client's end closes. Malformed stored values raise their conversion
// errors.
#pragma once

#include <optional>
#include <string>

#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "client/SessConfig.h"
#include "forms/Form.h"

namespace kq {

// The login server's settings as a procedure with a user sees them: those of the file or, when it cannot be
// written, what the user has given. The state and the settings object outlive it.
class PromptedSettings {
 public:
    PromptedSettings(ClientState& state, SessConfig& config) : state_(state), config_(config) {}

    SessConfig& Config() const { return config_; }
    // `time_out`: how a missing time-out is read.
    ServerSettings Read(const setting::Row<setting::Number>& time_out = setting::TimeOut) const;
    // The user is warned, once, of a file that cannot be written.
    void Write(const ServerSettings& settings);

 private:
    ClientState& state_;
    SessConfig& config_;
    std::optional<ServerSettings> unsaved_;
    bool warned_ = false;
};

// Shows the server dialog with the stored settings and keeps what the user confirms. True when confirmed.
bool ChangeConfiguration(ClientState& state, PromptedSettings& settings);

// The same, but only when no address and port are known or with `force`; else true immediately.
bool AskServerAddress(ClientState& state, PromptedSettings& settings, bool force);

// The login dialog, which starts with the last login id. True when the user gave id and password.
bool AskLoginDetails(ClientState& state, PromptedSettings& settings, bool use_profiles, const IconPtr& icon,
                     LoginAnswer& answer);

}  // namespace kq
