// kqappserver from outside.
#include <csignal>

#include <gtest/gtest.h>

#include "tools/Loopback.h"
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

TEST(KqAppServer, GoesOnWithoutItsTerminalWhenItWasToldTo) {
    ChildProcess server({"/bin/sh", "-c", "trap '' HUP; exec \"$0\" \"$@\"", KQ_APPSERVER, "--app", "Demo",
                         "--bus-port", "1", "--commands"});
    server.AwaitLine("kqappserver: listening on ");
    server.Signal(SIGHUP);
    server.Write("sessions\n");
    server.AwaitLine("Sessions 0");
    server.Signal(SIGTERM);
    EXPECT_EQ(0, server.ExitCode()) << server.Errors();
}

TEST(KqAppServer, SaysWhereItListens) {
    ChildProcess one({KQ_APPSERVER, "--app", "Demo", "--bus-port", "1", "--listen", HasIPv6() ? "::1" : ""});
    const std::string line = one.AwaitLine("kqappserver: listening on ");
    EXPECT_TRUE(line.starts_with(HasIPv6() ? "kqappserver: listening on [::1]:"
                                           : "kqappserver: listening on 0.0.0.0:"))
        << line;
    ChildProcess all({KQ_APPSERVER, "--app", "Demo", "--bus-port", "1", "--listen", ""});
    all.AwaitLine(HasIPv6() ? "kqappserver: listening on [::]:" : "kqappserver: listening on 0.0.0.0:");
}

}  // namespace
}  // namespace kq
