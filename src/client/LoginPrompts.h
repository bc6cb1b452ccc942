// What the client asks its user about settings: where the login server is, and who logs in.
//
// The settings file is read before and written after each prompt; a prompt that the user cancels writes
// nothing, and so does one that the client's end closes. Malformed stored values raise their conversion
// errors.
#pragma once

#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "client/SessConfig.h"
#include "platform/Form.h"

namespace kq {

// Shows the server dialog with the stored settings and keeps what the user confirms. True when confirmed.
bool ChangeConfiguration(ClientState& state, SessConfig& config);

// The same, but only when no address and port are stored or with `force`; else true at once.
bool AskServerAddress(ClientState& state, SessConfig& config, bool force);

// The login dialog, which starts with the last login id. True when the user gave id and password.
bool AskLoginDetails(ClientState& state, SessConfig& config, bool use_profiles, const IconPtr& icon,
                     LoginDetails& details);

}  // namespace kq
