// What the client asks its user about settings: where the login server is, and who logs in.
//
// The settings file is read before and written after each prompt; a prompt that the user cancels writes
// nothing. Malformed stored values raise their conversion errors.
#pragma once

#include <cstdint>
#include <string>

#include <kqappsession/Platform.h>

#include "client/LoginAttendant.h"
#include "client/SessConfig.h"
#include "platform/Form.h"

namespace kq {

// Shows the server dialog with the stored settings and keeps what the user confirms. True when confirmed.
bool ChangeConfiguration(const PlatformPtr& platform, SessConfig& config, const IconPtr& icon = nullptr);

// The same, but only when no address and port are stored or with `force`; else true at once.
bool AskServerAddress(const PlatformPtr& platform, SessConfig& config, bool force, const IconPtr& icon);

// The login dialog, which starts with the last login id. True when the user gave id and password.
bool AskLoginDetails(const PlatformPtr& platform, SessConfig& config, bool use_profiles, const IconPtr& icon,
                     LoginDetails& details);

}  // namespace kq
