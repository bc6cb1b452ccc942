// Names that clients give: how they are looked up, and how many may wait.
#include "zeb/ZebTesting.h"

namespace kq::zeb {
namespace {

class HostNamesTest : public ZebTest {
 protected:
    HostNamesTest() { machine.resolver->delay = Milliseconds(1'000); }

    bool Find(const std::string& host) {
        return names.Find(host, [this](const HostNames::Addresses& found) { answers.push_back(found); });
    }

    HostNames names{machine.platform, {.names = 2, .requests = 3}};
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
    gone->Find("zeb.example", [](const auto&) { ADD_FAILURE() << "answered"; });
    gone.reset();
    Pass(Milliseconds(1'000));
}

TEST_F(HostNamesTest, ThatAreTooManyRefuseALoginAndAValidation) {
    StartZeb();
    const auto client = NewClient();
    for (int i = 0; i < 64; ++i) {
        ASValidateClientRequest request;
        request.RestrictIP = "host" + std::to_string(i) + ".example";
        client->Send(request.Build());
    }
    auto login = LoginRequest("ana");
    login.RestrictIP = "another.example";
    EXPECT_EQ(client->Request(login.Build()).Field("ErrorNumber"), "7603");
    ASValidateClientRequest validation;
    validation.RestrictIP = "another.example";
    EXPECT_EQ(client->Request(validation.Build()).Field("ErrorNumber"), "7603");
}

}  // namespace
}  // namespace kq::zeb
