// Servers whose log or events nobody reads: they go on answering, and end when they are told to.
#include <csignal>

#include <gtest/gtest.h>

#include "tools/Loopback.h"
#include "tools/Site.h"

namespace kq {
namespace {

TEST(UnreadLog, DoesNotHoldUpTheLoginServer) {
    LoginServer zeb(KQ_ZEBCTL, KQ_ZEBD);
    zeb.Process().ShrinkPipes();
    for (int i = 0; i < 200; ++i)
        ConnectAndSend(zeb.Port(), std::string(100, 'x'));
    const auto login = RunLogin(zeb.Folder(), {"--address", "127.0.0.1", "--port", zeb.Port(), "--app",
                                               "None", "--user", LoginServer::kUser, "--time-out", "5000"});
    EXPECT_EQ("kqlogin: 0x80040A0B No servers available for this client.\n",
              (login->ExitCode(), login->Errors()));
    zeb.Process().Signal(SIGTERM);
    EXPECT_EQ(0, zeb.Process().ExitCodeUnread());
}

TEST(UnreadEvents, DoNotHoldUpTheApplicationServer) {
    Site site;
    auto& server = site.AppServer();
    server.ShrinkPipes();
    for (int i = 0; i < 2'000; ++i)
        server.Write("sessions\n");
    EXPECT_EQ(0, site.LogIn({"--register"})->ExitCode());
    server.Write("quit\n");
    EXPECT_EQ(1, server.ExitCodeUnread());
    EXPECT_EQ("kqappserver: standard output cannot be written: nobody reads it\n", server.Errors());
}

}  // namespace
}  // namespace kq
