// The two servers that a login meets, scripted: out of the box both do what a good one does.
#pragma once

#include <string>

#include <kqappsession/WebData.h>
#include <kqappsession/XMLMessage.h>

#include "support/ScriptedPeer.h"

namespace kq {

// The login server, at 192.0.2.1 port 7710.
class FakeZeb : public ScriptedPeer {
 public:
    static constexpr const char* kAddress = "192.0.2.1";
    static constexpr int kPort = 7710;
    static constexpr const char* kValidate = "ASValidateClientRequest";
    static constexpr const char* kLogin = "ASLoginRequest";
    static constexpr const char* kUpload = "ASProfilesUpdate";

    explicit FakeZeb(FakePlatform& machine);

    // A granted validation, and one with another field value.
    static XMLMessage Validation();
    static XMLMessage ValidationWith(const std::string& field, const std::string& value);
    // A granted login with translation table, session record, the profiles "Main" and "Second" (last used:
    // Main) and the application server's port; and one with another field value.
    static XMLMessage Login();
    static XMLMessage LoginWith(const std::string& field, const std::string& value);
    static XMLMessage LoginWithout(const std::string& field);
    static XMLMessage LoginWithProfiles(const Profiles& profiles);
    // A refusal of either type.
    static XMLMessage Refusal(const std::string& type, const std::string& number, const std::string& desc,
                              const std::string& param);

    // The next login is refused so.
    void RefusesLogin(const std::string& number, const std::string& desc = {}, const std::string& param = {});
};

// The application server, at the same address port 7000.
class FakeAppServer : public ScriptedPeer {
 public:
    static constexpr int kPort = 7000;
    static constexpr const char* kRegister = "ASRegisterRequest";

    explicit FakeAppServer(FakePlatform& machine);

    static XMLMessage Registration(const std::string& error_num = "0", const std::string& error_desc = {});
};

}  // namespace kq
