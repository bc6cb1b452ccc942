// The server dialog as its user and its caller see it.
#include "dialogs/DialogsTesting.h"
#include "dialogs/frmServer.h"

namespace kq {
namespace {

constexpr auto kBadPort = "The port entered is not valid.  Please enter again.";
constexpr auto kBadTimeOut = "Time-out value must be greater than 0 and less than 60 seconds.";

struct ServerDialog : DialogScene {
    // Opens the dialog; the user does as told.
    bool Opens(FakeDialogHost::Script script) {
        host.Expect("frmServer", std::move(script));
        return frmServer(machine.platform).GetServerInfo(server, icon);
    }
    // The user types a port (or time-out) and OK. True when that is accepted.
    bool Accepts(const std::string& box, const std::string& text) {
        return Opens([&](FakeUser& user) {
            user.Clears(box);
            user.Types(box, text);
            user.Clicks("cmdOK");
        });
    }
    void Refuses(const std::string& box, const std::string& text, const std::string& message) {
        host.Answer(BoxButton::OK);
        EXPECT_FALSE(Opens([&](FakeUser& user) {
            user.Clears(box);
            user.Types(box, text);
            user.Clicks("cmdOK");
            EXPECT_TRUE(user.IsOpen()) << text;
            user.Closes();
        }));
        EXPECT_EQ(host.LastBox().text, message) << text;
        Unchanged();
    }
    void Unchanged() {
        EXPECT_EQ(server.address, "zeb");
        EXPECT_EQ(server.port, 7710);
        EXPECT_EQ(server.time_out, 10'000);
        EXPECT_TRUE(server.use_as_server_for_login);
    }

    ServerSettings server{"zeb", 7710, 10'000, true};
    IconPtr icon;
};

TEST_F(ServerDialog, ShowsItsTexts) {
    Opens([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Server Configuration");
        EXPECT_EQ(
            user.Sees("lblIntro"),
            "Please specify the IP address or domain and port of the Login Server, as well as the maximum "
            "time-out for connections.");
        EXPECT_EQ(user.Sees("lblAddress"), "Address:");
        EXPECT_EQ(user.Sees("lblPort"), "Port:");
        EXPECT_EQ(user.Sees("lblTimeOut"), "Connection Time-out:");
        EXPECT_EQ(user.Sees("lblSec"), "(in seconds)");
        EXPECT_EQ(user.Sees("chkUseASServerforLogin"), "Use App Server for Login");
        EXPECT_EQ(user.Sees("cmdCancel"), "Cancel");
        EXPECT_EQ(user.Sees("cmdOK"), "OK");
        user.Closes();
    });
}

TEST_F(ServerDialog, ShowsTheCallersValues) {
    Opens([](FakeUser& user) {
        EXPECT_EQ(user.Sees("txtAddress"), "zeb");
        EXPECT_EQ(user.Sees("txtPort"), "7710");
        EXPECT_EQ(user.Sees("txtTimeOut"), "10");
        EXPECT_TRUE(user.SeesTicked("chkUseASServerforLogin"));
        user.Closes();
    });
}

TEST_F(ServerDialog, LeavesTheCheckBoxEmptyWhenTheApplicationServerIsNotUsed) {
    server.use_as_server_for_login = false;
    Opens([](FakeUser& user) {
        EXPECT_FALSE(user.SeesTicked("chkUseASServerforLogin"));
        user.Closes();
    });
}

TEST_F(ServerDialog, ShowsAPortBelowOneAsAnEmptyBox) {
    for (const std::int32_t none : {0, -1}) {
        server.port = none;
        Opens([](FakeUser& user) {
            EXPECT_EQ(user.Sees("txtPort"), "");
            user.Closes();
        });
    }
}

TEST_F(ServerDialog, DropsTheFractionOfASecond) {
    for (const auto& [milliseconds, seconds] : {std::pair{1500, "1"}, {999, "0"}, {-1500, "-1"}, {0, "0"}}) {
        server.time_out = milliseconds;
        Opens([&](FakeUser& user) {
            EXPECT_EQ(user.Sees("txtTimeOut"), seconds);
            user.Closes();
        });
    }
}

TEST_F(ServerDialog, ShowsTheIconThatItIsGiven) {
    icon = std::make_shared<FakeIcon>();
    Opens([&](FakeUser& user) {
        EXPECT_EQ(user.Window().FormIcon(), icon);
        user.Closes();
    });
}

TEST_F(ServerDialog, IsModalAndBeginsAtTheAddress) {
    Opens([](FakeUser& user) {
        EXPECT_TRUE(user.Window().Modal());
        EXPECT_EQ(user.Focus(), "txtAddress");
        user.Closes();
    });
}

TEST_F(ServerDialog, SelectsTheWholeAddressAndPortOnFocus) {
    Opens([](FakeUser& user) {
        EXPECT_EQ(user.SeesMarked("txtAddress"), (Selection{0, 3}));
        user.GoesTo("txtPort");
        EXPECT_EQ(user.SeesMarked("txtPort"), (Selection{0, 4}));
        user.Closes();
    });
}

TEST_F(ServerDialog, DoesNotSelectTheTimeOutOnFocus) {
    Opens([](FakeUser& user) {
        user.GoesTo("txtTimeOut");
        EXPECT_EQ(user.SeesMarked("txtTimeOut"), Selection{});
        user.Closes();
    });
}

TEST_F(ServerDialog, IsReachedByTabInReadingOrder) {
    Opens([](FakeUser& user) {
        std::string way = user.Focus();
        for (int i = 0; i < 6; ++i) {
            user.Presses(Key::Tab);
            way += " " + user.Focus();
        }
        EXPECT_EQ(way, "txtAddress txtPort txtTimeOut chkUseASServerforLogin cmdOK cmdCancel txtAddress");
        user.Closes();
    });
}

TEST_F(ServerDialog, GivesBackWhatTheUserConfirmed) {
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Types("txtAddress", " login.example.com ");
        user.Types("txtPort", "80");
        user.Clears("txtTimeOut");
        user.Types("txtTimeOut", "25");
        user.Unticks("chkUseASServerforLogin");
        user.Clicks("cmdOK");
    }));
    EXPECT_EQ(server.address, " login.example.com ");
    EXPECT_EQ(server.port, 80);
    EXPECT_EQ(server.time_out, 25'000);
    EXPECT_FALSE(server.use_as_server_for_login);
}

TEST_F(ServerDialog, AcceptsAnEmptyAddress) {
    EXPECT_TRUE(Accepts("txtAddress", ""));
    EXPECT_EQ(server.address, "");
}

TEST_F(ServerDialog, RefusesAPortThatIsNone) {
    for (const auto text : {"0", "-5", "65536", "abc", "", "0.5", "3000000000", "65535.6"})
        Refuses("txtPort", text, kBadPort);
}

TEST_F(ServerDialog, AcceptsThePortsOfTheRange) {
    for (const auto& [text, number] : {std::pair{"1", 1}, {"65535", 65535}, {"0.6", 1}}) {
        EXPECT_TRUE(Accepts("txtPort", text)) << text;
        EXPECT_EQ(server.port, number) << text;
    }
}

TEST_F(ServerDialog, ReadsTheNumberAtTheBeginningOfThePort) {
    for (const auto text : {"80x", " 80"}) {
        server.port = 7710;
        EXPECT_TRUE(Accepts("txtPort", text)) << text;
        EXPECT_EQ(server.port, 80) << text;
    }
}

TEST_F(ServerDialog, RoundsAPortThatEndsInAHalfToTheEvenNeighbour) {
    for (const auto& [text, number] : {std::pair{"80.5", 80}, {"81.5", 82}}) {
        EXPECT_TRUE(Accepts("txtPort", text)) << text;
        EXPECT_EQ(server.port, number) << text;
    }
    server.port = 7710;
    Refuses("txtPort", "65535.5", kBadPort);
}

TEST_F(ServerDialog, RefusesATimeOutThatIsNone) {
    for (const auto text : {"0", "61", "0.5", "", "x", "-1", "60.6", "3000000000"})
        Refuses("txtTimeOut", text, kBadTimeOut);
}

TEST_F(ServerDialog, AcceptsATimeOutOf60SecondsThoughTheMessageSaysLess) {
    EXPECT_TRUE(Accepts("txtTimeOut", "60"));
    EXPECT_EQ(server.time_out, 60'000);
}

TEST_F(ServerDialog, RoundsATimeOutThatEndsInAHalfToTheEvenNeighbourForTheCheck) {
    EXPECT_TRUE(Accepts("txtTimeOut", "60.5"));
    EXPECT_EQ(server.time_out, 60'500);
}

TEST_F(ServerDialog, KeepsTheFractionOfATimeOutThatItCheckedRounded) {
    for (const auto& [text, milliseconds] :
         {std::pair{"1", 1000}, {"1.4", 1400}, {"0.6", 600}, {"60.4", 60'400}, {"5s", 5000}}) {
        EXPECT_TRUE(Accepts("txtTimeOut", text)) << text;
        EXPECT_EQ(server.time_out, milliseconds) << text;
    }
}

TEST_F(ServerDialog, ComplainsAboutThePortFirst) {
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        user.Types("txtPort", "x");
        user.Clears("txtTimeOut");
        user.Clicks("cmdOK");
        user.Closes();
    });
    BoxSaid(kBadPort, "KQAppSessionLib", BoxStyle::Warning);
}

TEST_F(ServerDialog, ComplainsAboutTheTimeOutInAPlainBoxAndStaysOpen) {
    host.Answer(BoxButton::OK);
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Clears("txtTimeOut");
        user.Clicks("cmdOK");
        user.Types("txtTimeOut", "7");
        user.Clicks("cmdOK");
    }));
    BoxSaid(kBadTimeOut, "KQAppSessionLib", BoxStyle::Warning);
    EXPECT_EQ(server.time_out, 7000);
}

TEST_F(ServerDialog, GoesBackToTheBoxThatItComplainsAboutWithItsTextSelected) {
    for (const auto box : {"txtPort", "txtTimeOut"}) {
        host.Answer(BoxButton::OK);
        EXPECT_FALSE(Opens([&](FakeUser& user) {
            user.Clears(box);
            user.Types(box, "999999");
            user.Presses(Key::Tab);
            user.Clicks("cmdOK");
            EXPECT_EQ(user.Focus(), box);
            EXPECT_EQ(user.SeesMarked(box), (Selection{0, 6}));
            user.Closes();
        }));
    }
}

TEST_F(ServerDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Types("txtAddress", "other");
        user.Types("txtPort", "1");
        user.Clicks("cmdCancel");
    }));
    Unchanged();
}

TEST_F(ServerDialog, ChangesNothingWhenItIsClosed) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Types("txtAddress", "other");
        user.Closes();
    }));
    Unchanged();
}

TEST_F(ServerDialog, TakesEnterForOKAndEscapeForCancel) {
    EXPECT_TRUE(Opens([](FakeUser& user) { user.Presses(Key::Enter); }));
    EXPECT_FALSE(Opens([](FakeUser& user) { user.Presses(Key::Escape); }));
}

}  // namespace
}  // namespace kq
