// An application server that is killed, with real processes: what its users meet.
#include <gtest/gtest.h>

#include "tools/Site.h"

namespace kq {
namespace {

// A user who may have one session, and has it.
class LostAppServer : public testing::Test {
 protected:
    LostAppServer() {
        site.Zeb().AddUser("bob", {"--max-sessions", "1"});
        first = LogIn({"--register", "--wait"});
        first->AwaitLine("LoginState kqaslsServerLogin");
    }
    std::unique_ptr<ChildProcess> LogIn(const std::vector<std::string>& arguments) {
        return site.LogIn(arguments, LoginServer::kPassword, "bob");
    }

    Site site;
    std::unique_ptr<ChildProcess> first;
};

TEST_F(LostAppServer, ThatIsBackLetsItsUserInAtOnce) {
    EXPECT_NE(0, LogIn({"--register"})->ExitCode()) << "one session is all that the user may have";
    site.KillAppServer();
    site.StartAppServerAgain();
    const auto second = LogIn({"--register"});
    EXPECT_EQ(0, second->ExitCode()) << second->Output() << second->Errors();
}

TEST_F(LostAppServer, IsOfferedToNobody) {
    site.KillAppServer();
    const auto second = LogIn({});
    EXPECT_NE(0, second->ExitCode());
    EXPECT_NE(std::string::npos, second->Errors().find("No servers available")) << second->Errors();
}

}  // namespace
}  // namespace kq
