// The user's profiles on the client: uploading the collection, adding and replacing profiles.
#pragma once

#include <memory>

#include <kqappsession/WebData.h>

#include "messages/ServerSettings.h"

namespace kq {

class ClientState;
class LoginAttendant;
class Procedure;

// A step of a procedure: sends the whole collection to the login server over a connection of its own. An
// empty address, a port and a time-out of 0 are filled in from the settings file. True when it was sent,
// false when the attendant's user gave up. A failed upload leaves the local collection as it is.
bool UploadProfiles(ClientState& state, Procedure& procedure, LoginAttendant& attendant,
                    ServerSettings& target);

// The upload as a procedure of its own.
bool UpdateProfilesEx(ClientState& state, bool interactive, ServerSettings& target);
void UpdateProfiles(ClientState& state);

// Adds the profile in place of one of its name, the current profile following its replacement, and uploads.
void AddReplaceProfile(ClientState& state, bool interactive, std::shared_ptr<Profile> changed_profile);

}  // namespace kq
