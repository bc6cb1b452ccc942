// kqappserver from outside.
#include <csignal>

#include <gtest/gtest.h>

#include "tools/Site.h"

namespace kq {
namespace {

TEST(KqAppServer, ListsItsSessionsOnCommand) {
    Site site;
    site.AppServer().Write("sessions\n");
    EXPECT_EQ("Sessions 0", site.AppServer().AwaitLine("Sessions "));
    const auto login = site.LogIn({"--register", "--wait"});
    login->AwaitLine("LoginState kqaslsServerLogin");
    site.AppServer().Write("sessions\n");
    EXPECT_EQ("Sessions 1", site.AppServer().AwaitLine("Sessions "));
    const std::string line = site.AppServer().AwaitLine("Session session=");
    EXPECT_NE(std::string::npos, line.find(" user=ann ")) << line;
    EXPECT_NE(std::string::npos, line.find(" client=127.0.0.1:")) << line;
}

TEST(KqAppServer, SaysWhatItSendsAndReceivesOnTheBus) {
    Site site;
    const auto login = site.LogIn({"--register"});
    EXPECT_EQ(0, login->ExitCode()) << login->Errors();
    site.AppServer().AwaitLine("XMLBusSend RequestASRegistration");
    site.AppServer().AwaitLine("XMLBusReceive ASRegistrationResponse");
}

TEST(KqAppServer, CountsTheSessionsThatComeAndGo) {
    Site site;
    EXPECT_EQ(0, site.LogIn({"--register"})->ExitCode());
    site.AppServer().AwaitLine("Count 1");
    site.AppServer().AwaitLine("Count 0");
}

TEST(KqAppServer, SaysThatACommandIsUnknown) {
    Site site;
    site.AppServer().Write("dance\ndisconnect S0\n");
    site.AppServer().AwaitLine("kqappserver: the commands are sessions, disconnect ID and quit");
    site.AppServer().AwaitLine("kqappserver: there is no session S0");
}

TEST(KqAppServer, SeesItsClientsOffWhenItQuits) {
    Site site;
    const auto login = site.LogIn({"--register", "--wait"});
    login->AwaitLine("LoginState kqaslsServerLogin");
    site.AppServer().Write("quit\n");
    login->AwaitLine("Disconnected by the application server");
    EXPECT_EQ(0, site.AppServer().ExitCode()) << site.AppServer().Errors();
    EXPECT_NE(std::string::npos, site.AppServer().Output().find("\nDisconnected session="));
}

TEST(KqAppServer, EndsCleanlyAtASignal) {
    Site site;
    site.AppServer().Signal(SIGTERM);
    EXPECT_EQ(0, site.AppServer().ExitCode());
    EXPECT_EQ("", site.AppServer().Errors());
}

}  // namespace
}  // namespace kq
