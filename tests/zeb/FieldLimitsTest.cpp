// Requests whose fields hold too much or nonsense.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

struct FieldLimit {
    const char* name;
    std::size_t bytes;
};

constexpr std::array<FieldLimit, 11> kLimits = {{{"AppID", 128},
                                                 {"InterfaceVersion", 64},
                                                 {"ClientVersion", 64},
                                                 {"RestrictIP", 256},
                                                 {"RestrictPort", 16},
                                                 {"SessionID", 64},
                                                 {"UserUID", 16},
                                                 {"Request", 64},
                                                 {"ReturnMsgType", 1024},
                                                 {"ReturnSubType", 1024},
                                                 {"TransID", 1024}}};

constexpr std::array kRequests = {"ASValidateClientRequest", "ASLoginRequest", "ASPasswordChangeRequest",
                                  "ASProfilesUpdate", "ASDownloadClientRequest"};

class FieldLimits : public ZebTest {
 protected:
    void SetUp() override {
        StartZeb();
        AddUser("ana");
        server = RunningServer();
    }
    XMLMessage AskWith(const char* type, const char* field, std::size_t bytes) {
        XMLMessage request(type, "1");
        request.SetField(field, std::string(bytes, '0'));
        return Ask(request);
    }
    std::unique_ptr<TestAppServer> server;
};

TEST_F(FieldLimits, AreTheSameInEveryRequest) {
    for (const char* type : kRequests) {
        for (const auto& [name, bytes] : kLimits) {
            SCOPED_TRACE(std::string(type) + " " + name);
            EXPECT_NE(AskWith(type, name, bytes).Field("ErrorDesc"), SentenceOf(Refusal::FieldTooLong));
            const bool has_param = std::string_view(type) != "ASDownloadClientRequest";
            ExpectRefused(AskWith(type, name, bytes + 1), Refusal::FieldTooLong, has_param ? name : "");
        }
    }
}

TEST_F(FieldLimits, HoldForNestedFieldsToo) {
    XMLMessage request("ASValidateClientRequest", "1");
    request.SetXMLField("AppID", "<AppID><Part>" + std::string(128, 'x') + "</Part></AppID>");
    ExpectRefused(ASValidateClientResponse::Read(Ask(request)), Refusal::FieldTooLong, "AppID");
}

TEST_F(FieldLimits, HoldForRelayedRequests) {
    auto request = LoginRequest("ana");
    request.AppID = std::string(129, 'x');
    server->Relay(request.Build(), "42");
    const auto reply = server->ExpectHeard();
    EXPECT_EQ(reply.Field("TransID"), "42");
    ExpectRefused(ASLoginResponse::Read(reply), Refusal::FieldTooLong, "AppID");
}

TEST_F(FieldLimits, ARefusedLoginCostsNoWork) {
    auto request = LoginRequest("ana");
    request.RestrictIP = std::string(257, 'x');
    ExpectRefused(Login(request), Refusal::FieldTooLong, "RestrictIP");
    EXPECT_EQ(hasher.verified, 0);
}

TEST_F(FieldLimits, AnApplicationThatCannotBeHasNoServer) {
    for (const char* app_id : {"", " ", "<Demo>", "Demo\n", "D\xC3\xA9mo", "demo"}) {
        SCOPED_TRACE(app_id);
        auto login = LoginRequest("ana");
        login.AppID = app_id;
        ExpectRefused(Login(login), Refusal::NoServer);
        ASValidateClientRequest validation;
        validation.AppID = app_id;
        validation.InterfaceVersion = "1.0";
        EXPECT_EQ(Ask(validation.Build()).Field("InterfaceAvailable"), "False");
    }
    auto query = store.Use("SELECT count(*) FROM sessions");
    EXPECT_TRUE(query.Next());
    EXPECT_EQ(query.Number(0), 0);
}

TEST_F(FieldLimits, ALongLoginIdInAPasswordChangeIsNobodys) {
    ASPasswordChangeRequest request;
    request.AppID = kApp;
    request.LoginID = std::string(500'000, 'x');
    request.SessionID = Login("ana").SessionID;
    ExpectRefused(ASPasswordChangeResponse::Read(Ask(request.Build())), Refusal::NoSession);
}

}  // namespace
}  // namespace kq::zeb
