// Names that users restrict their logins to: how they are looked up, for whom, and how many may wait.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class HostNamesTest : public ZebTest {
 protected:
    HostNamesTest() { machine.resolver->delay = Milliseconds(1'000); }

    // Every question comes from a connection and a user of its own unless they are named.
    bool Find(const std::string& host) {
        const auto number = std::to_string(++asked);
        return Find(host, {"connection " + number, "user " + number});
    }
    bool Find(const std::string& host, const HostNames::Asker& asker) {
        return names.Find(asker, host, [this](const auto& found) { answers.push_back(found); });
    }

    HostNames names{machine.platform, {.names = 2, .requests = 3, .each = 2}};
    int asked = 0;
    std::vector<HostNames::Addresses> answers;
};

TEST_F(HostNamesTest, AreAnsweredWithTheirAddressesOrNone) {
    machine.resolver->names["zeb.example"] = {"192.0.2.10", "192.0.2.11"};
    EXPECT_TRUE(Find("zeb.example"));
    EXPECT_TRUE(Find("nowhere.example"));
    EXPECT_TRUE(answers.empty());
    Pass(Milliseconds(1'000));
    EXPECT_EQ(answers, (std::vector<HostNames::Addresses>{{"192.0.2.10", "192.0.2.11"}, {}}));
}

TEST_F(HostNamesTest, AreLookedUpOnceForAllWhoWait) {
    Find("zeb.example");
    Find("zeb.example");
    Pass(Milliseconds(1'000));
    EXPECT_EQ(answers.size(), 2U);
    EXPECT_EQ(machine.resolver->asked.size(), 1U);
}

TEST_F(HostNamesTest, AreLookedUpAnewOnceTheyAreAnswered) {
    Find("zeb.example");
    Pass(Milliseconds(1'000));
    Find("zeb.example");
    EXPECT_EQ(machine.resolver->asked.size(), 2U);
}

TEST_F(HostNamesTest, AreNoMoreAtOnceThanTheirLimit) {
    Find("a.example");
    Find("b.example");
    EXPECT_FALSE(Find("c.example"));
    Pass(Milliseconds(1'000));
    EXPECT_TRUE(Find("c.example"));
}

TEST_F(HostNamesTest, HaveNoMoreRequestsWaitingThanTheirLimit) {
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(Find("zeb.example"));
    EXPECT_FALSE(Find("zeb.example"));
    Pass(Milliseconds(1'000));
    EXPECT_TRUE(Find("zeb.example"));
}

TEST_F(HostNamesTest, AreNotAnsweredOnceNobodyIsThere) {
    auto gone = std::make_unique<HostNames>(machine.platform, HostNames::Rule());
    gone->Find({"connection", "ana"}, "zeb.example", [](const auto&) { ADD_FAILURE() << "answered"; });
    gone.reset();
    Pass(Milliseconds(1'000));
}

TEST_F(HostNamesTest, AreFewAtOnceForOneConnection) {
    EXPECT_TRUE(Find("zeb.example", {"connection", "ana"}));
    EXPECT_TRUE(Find("zeb.example", {"connection", "bob"}));
    EXPECT_FALSE(Find("zeb.example", {"connection", "eve"}));
    EXPECT_TRUE(Find("zeb.example", {"another", "eve"}));
    Pass(Milliseconds(1'000));
    EXPECT_TRUE(Find("zeb.example", {"connection", "eve"}));
}

TEST_F(HostNamesTest, AreFewAtOnceForOneUser) {
    EXPECT_TRUE(Find("zeb.example", {"one", "ana"}));
    EXPECT_TRUE(Find("zeb.example", {"two", "ana"}));
    EXPECT_FALSE(Find("zeb.example", {"three", "ana"}));
    EXPECT_TRUE(Find("zeb.example", {"three", "bob"}));
    Pass(Milliseconds(1'000));
    EXPECT_TRUE(Find("zeb.example", {"three", "ana"}));
}

class RestrictedLogin : public ZebTest {
 protected:
    void SetUp() override {
        StartZeb();
        AddUser("ana");
        server = NewServer(7000);
        server->address = "203.0.113.5";
        server->Announce();
    }
    ASLoginRequest To(const std::string& host, const std::string& password = kPassword) const {
        auto request = LoginRequest("ana", password);
        request.RestrictIP = host;
        return request;
    }
    // Logins of as many other users as names can be looked up at once.
    void FillTheResolver() {
        machine.resolver->delay = std::chrono::minutes(1);
        for (int i = 0; i < 64; ++i) {
            const auto number = std::to_string(i);
            AddUser("user" + number);
            auto request = To("host" + number + ".example");
            request.LoginID = "user" + number;
            waiting.push_back(NewClient());
            waiting.back()->Send(request.Build());
        }
        machine.loop->RunReady();
        EXPECT_EQ(machine.resolver->asked.size(), 64U);
    }

    std::unique_ptr<TestAppServer> server;
    std::vector<std::shared_ptr<APClient>> waiting;
};

TEST_F(RestrictedLogin, IsResolvedByName) {
    machine.resolver->names["apps.example"] = {"203.0.113.5"};
    EXPECT_EQ(Login(To("apps.example")).Port, "7000");
    ExpectRefused(Login(To("nowhere.example")), Refusal::NoServer);
}

TEST_F(RestrictedLogin, LooksUpNothingBeforeThePasswordWasRight) {
    ExpectRefused(Login(To("apps.example", "a guess")), Refusal::UnknownUser);
    EXPECT_TRUE(machine.resolver->asked.empty());
}

TEST_F(RestrictedLogin, ToANumericAddressNeedsNoLookUp) {
    FillTheResolver();
    EXPECT_EQ(Login(To("203.0.113.5")).Port, "7000");
    ExpectRefused(Login(To("203.0.113.6")), Refusal::NoServer);
    ExpectRefused(Login(To("[2001:db8::1]")), Refusal::NoServer);
}

TEST_F(RestrictedLogin, IsRefusedWhileTooManyNamesAreLookedUp) {
    FillTheResolver();
    ExpectRefused(Login(To("apps.example")), Refusal::Busy);
    Pass(std::chrono::minutes(1));
    machine.resolver->names["apps.example"] = {"203.0.113.5"};
    machine.resolver->delay = Milliseconds(0);
    EXPECT_EQ(Login(To("apps.example")).Port, "7000");
}

TEST_F(RestrictedLogin, OfAUserWhoIsDisabledDuringTheLookUpIsRefused) {
    machine.resolver->names["apps.example"] = {"203.0.113.5"};
    machine.resolver->delay = Milliseconds(1'000);
    const auto client = NewClient();
    client->Send(To("apps.example").Build());
    machine.loop->RunReady();
    Accounts accounts(store);
    accounts.SetDisabled(accounts.Find("ana")->uid, true);
    Pass(Milliseconds(1'000));
    XMLMessage reply;
    reply.LoadXML(client->TakeBlock(0).data);
    ExpectRefused(ASLoginResponse::Read(reply), Refusal::Disabled);
}

}  // namespace
}  // namespace kq::zeb
