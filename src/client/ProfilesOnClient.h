// The user's profiles on the client: uploading the collection, adding and replacing profiles.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <kqappsession/WebData.h>

namespace kq {

class ClientState;
class LoginAttendant;
class Procedure;

// Where profiles are uploaded to; empty and 0 values are filled in from the settings file.
struct UploadTarget {
    std::string address;
    std::int32_t port = 0;
    std::int32_t time_out = 0;  // ms
};

// A step of a procedure: sends the whole collection to the login server over a connection of its own. True
// when it was sent, false when the attendant's user gave up. A failed upload leaves the local collection as
// it is.
bool UploadProfiles(ClientState& state, Procedure& procedure, LoginAttendant& attendant,
                    UploadTarget& target);

// The upload as a procedure of its own.
bool UpdateProfilesEx(ClientState& state, bool interactive, UploadTarget& target);
void UpdateProfiles(ClientState& state);

// Adds the profile in place of one of its name, the current profile following its replacement, and uploads.
void AddReplaceProfile(ClientState& state, bool interactive, std::shared_ptr<Profile> changed_profile);

}  // namespace kq
