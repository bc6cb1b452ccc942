#include <sstream>

#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "tools/kqlogin/LoginReport.h"

namespace kq {
namespace {

// A client in the state that a system login leaves, and a report on it.
class LoginReportTest : public testing::Test {
 protected:
    void LogIn() {
        auto message = std::make_shared<XMLMessage>("SessionInfo", "1");
        for (const auto& [name, value] : {std::pair{"AppID", "Demo"},
                                          {"SessionID", "S17"},
                                          {"LoginID", "ann"},
                                          {"FirstName", "Ann"},
                                          {"LastName", "Lee"},
                                          {"UserUID", "55"},
                                          {"Language", "en"},
                                          {"Password", "s3cret"}}) {
            message->SetField(name, value);
        }
        auto profiles = std::make_shared<Profiles>();
        profiles->Add(std::make_shared<Profile>("Default"));
        client_.SetSystemLoginState(message, {}, profiles, "Default", "127.0.0.1", 7000, 1000);
    }
    std::string Output() const { return output_.str(); }
    std::string Errors() const { return errors_.str(); }
    LoginReport Report(bool json) { return {output_, errors_, json}; }

    FakePlatform machine_{FakePlatform::Face::None};
    KQAppSessClient client_{machine_.platform};
    std::ostringstream output_;
    std::ostringstream errors_;
};

TEST_F(LoginReportTest, TellsALoginAsOneFactALine) {
    LogIn();
    Report(false).LoggedIn(client_);
    EXPECT_EQ(
        "LoginState kqaslsSystemLogin\nSessionID S17\nLoginID ann\nName Ann Lee\nUserUID 55\n"
        "AppServer 127.0.0.1:7000\nProfile Default\nCurrentProfile Default\n",
        Output());
}

TEST_F(LoginReportTest, IsSilentUntilTheEndWhenItWritesJson) {
    LogIn();
    auto report = Report(true);
    report.LoggedIn(client_);
    report.Sent("KQAppMessage", 5);
    EXPECT_EQ("", Output());
}

TEST_F(LoginReportTest, WritesALoginAsOneJsonObject) {
    LogIn();
    Report(true).Succeeded(client_);
    EXPECT_EQ(
        R"({"result":"ok","LoginState":"kqaslsSystemLogin","Session":{"SessionID":"S17","LoginID":"ann",)"
        R"("FirstName":"Ann","LastName":"Lee","UserUID":"55","Language":"en"},)"
        R"("AppServerAddress":"127.0.0.1","AppServerPort":7000,"Profiles":["Default"],)"
        R"("CurrentProfile":"Default"})"
        "\n",
        Output());
}

TEST_F(LoginReportTest, WritesAFailureAsJsonAndAsALineOfErrors) {
    Report(true).Failed(client_,
                        Error(static_cast<std::int32_t>(0x80040A06U), "KQAppSessionLib", "No: \"x\"\n."));
    EXPECT_EQ(R"({"result":"error","LoginState":"kqaslsNotLoggedIn","Error":{"Number":"0x80040A06",)"
              R"("Source":"KQAppSessionLib","Description":"No: \"x\"\u000a.",)"
              R"("Cause":"Other"}})"
              "\n",
              Output());
    EXPECT_EQ("kqlogin: 0x80040A06 No: \"x\"\\u000a.\n", Errors());
}

TEST_F(LoginReportTest, TellsAUserWhoGaveUp) {
    Report(true).GivenUp(client_);
    EXPECT_EQ("{\"result\":\"given up\",\"LoginState\":\"kqaslsNotLoggedIn\"}\n", Output());
    EXPECT_EQ("kqlogin: given up by the user\n", Errors());
}

TEST_F(LoginReportTest, NeverTellsThePassword) {
    LogIn();
    auto text = Report(false);
    text.LoggedIn(client_);
    text.Succeeded(client_);
    Report(true).Succeeded(client_);
    EXPECT_NE("", Output());
    EXPECT_EQ(std::string::npos, (Output() + Errors()).find("s3cret"));
}

LoginStep Refusal() {
    return {"SystemLogin", "lsAttemptLogin", "logs in", 250, "lsFailed", {10060, kqaserrLoginBadLogin}};
}

TEST_F(LoginReportTest, WritesAStepOfTheTraceAsALineOfErrors) {
    Report(false).Step(Refusal());
    EXPECT_EQ("SystemLogin lsAttemptLogin 250 lsFailed 10060 0x80040A05\n", Errors());
    EXPECT_EQ("", Output());
}

TEST_F(LoginReportTest, WritesAStepOfTheTraceAsJson) {
    Report(true).Step(Refusal());
    EXPECT_EQ(R"({"Procedure":"SystemLogin","State":"lsAttemptLogin","Role":"logs in","Milliseconds":250,)"
              R"("Outcome":"lsFailed","Errors":["10060","0x80040A05"]})"
              "\n",
              Errors());
    EXPECT_EQ("", Output());
}

TEST_F(LoginReportTest, TellsWhoEndedTheSession) {
    Report(false).WaitEnded(true);
    Report(false).WaitEnded(false);
    EXPECT_EQ("Disconnected by the application server\nDisconnected\n", Output());
}

}  // namespace
}  // namespace kq
