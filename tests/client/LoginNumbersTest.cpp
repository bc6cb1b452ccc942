// Numbers in a login reply that are beyond all bounds.
#include "client/LoginFixture.h"

namespace kq {
namespace {

using LoginNumbersTest = LoginFixture;

TEST_F(LoginNumbersTest, ACodeBeyondAllNumbersIsAnErrorWithoutACode) {
    for (const char* number : {"7721e999", "99999999999", "-1e999"}) {
        zeb.RefusesLogin(number, "Closed today");
        ExpectFailedLogin(kqaserrLoginLoginFailed, "Login failed: Closed today.");
    }
}

TEST_F(LoginNumbersTest, DaysBeyondAllNumbersAreManyDays) {
    XMLMessage reply = FakeZeb::LoginWith("ErrorNumber", "7724");
    reply.SetField("DaysToExpirePassword", "1e999");
    zeb.Once(FakeZeb::kLogin, zeb.Answer(reply));
    ExpectFailedLogin(kqaserrLoginBadPassword, "Password must be changed before login may be completed.");
}

TEST_F(LoginNumbersTest, APortThatIsNotANumberOrBeyondAllNumbersIsNone) {
    for (const char* port : {"none", "99999999999", "1e999"}) {
        zeb.Once(FakeZeb::kLogin, zeb.Answer(FakeZeb::LoginWith("Port", port)));
        EXPECT_TRUE(SystemLogin()) << port;
        EXPECT_EQ(client->AppServerPort(), 0) << port;
        EXPECT_EQ(ServerLoginError().Number(), kqaserrLoginNoConnectAS) << port;
    }
}

}  // namespace
}  // namespace kq
