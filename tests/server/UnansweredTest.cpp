// Requests that get no answer from the login server: how long they wait, and what their clients are sent.
#include "server/OpenRequests.h"
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Unanswered : public ServerTest {
 protected:
    void SetUp() override { Listens(); }
    void Pass(int seconds) { machine_.loop->Advance(std::chrono::seconds(seconds)); }
};

TEST_F(Unanswered, RelayIsRefusedAfterHalfAMinute) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"), "7");
    Pass(29);
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
    Pass(1);
    EXPECT_EQ(client.Answer(), MessageOf("ASLoginResponse", {{"ErrorNumber", "-2147218932"},
                                                             {"ErrorDesc", "The login server is silent."}}));
    EXPECT_EQ(client.AnswerTag(), "7");
    EXPECT_TRUE(client.Connected());
}

TEST_F(Unanswered, RelayLeavesItsClientTenSecondsForAnother) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    Pass(39);
    EXPECT_TRUE(client.Connected());
    Pass(1);
    EXPECT_FALSE(client.Connected());
}

TEST_F(Unanswered, RelayLeavesItsClientTheTimeOfItsOtherRequests) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    Pass(25);
    client.Sends(MessageOf("ASValidateClientRequest"));
    Pass(30);
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASLoginResponse", "ASValidateClientResponse"));
    Pass(10);
    EXPECT_FALSE(client.Connected());
}

TEST_F(Unanswered, RelayDoesNotLimitTheTimeOfAClientThatWasAnsweredBefore) {
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse"));
    client.Sends(MessageOf("ASPasswordChangeRequest"));
    Pass(1000);
    EXPECT_TRUE(client.Connected());
}

TEST_F(Unanswered, RegistrationIsRefusedAfterHalfAMinuteAndItsClientDisconnected) {
    auto& client = Client();
    client.Registers("S17", "1", "Demo", "1033", "7");
    Pass(30);
    EXPECT_EQ(client.Answer(),
              MessageOf("ASRegisterResponse",
                        {{"ErrorNum", "-2147218927"}, {"ErrorDesc", "The login server is silent."}}));
    EXPECT_EQ(client.AnswerTag(), "7");
    EXPECT_FALSE(client.Connected());
}

TEST_F(Unanswered, RequestsAreRefusedEachInItsOwnTime) {
    auto& first = Client();
    auto& second = Client();
    first.Sends(MessageOf("ASLoginRequest"));
    Pass(5);
    second.Sends(MessageOf("ASPasswordChangeRequest"));
    Pass(25);
    EXPECT_THAT(first.AnswerTypes(), ElementsAre("ASLoginResponse"));
    EXPECT_THAT(second.AnswerTypes(), IsEmpty());
    Pass(5);
    EXPECT_THAT(second.AnswerTypes(), ElementsAre("ASPasswordChangeResponse"));
}

TEST_F(Unanswered, RequestIsNotAnsweredLater) {
    auto& client = RegisteredClient("S17");
    client.Sends(MessageOf("ASPasswordChangeRequest"));
    Pass(30);
    zeb_.Answers("ASPasswordChangeRequest", MessageOf("ASPasswordChangeResponse", {{"ErrorNumber", "0"}}));
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASRegisterResponse", "ASPasswordChangeResponse"));
    EXPECT_NE(client.Answer().Field("ErrorNumber"), "0");
}

TEST_F(Unanswered, RequestIsNotDeliveredToABusThatComesBackLater) {
    bus_.SetUp(false);
    Run();
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    auto& registering = Client();
    registering.Registers("S17");
    Pass(31);
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASLoginResponse"));
    EXPECT_THAT(registering.AnswerTypes(), ElementsAre("ASRegisterResponse"));
    bus_.SetUp(true);
    Pass(60);
    EXPECT_THAT(zeb_.requests, IsEmpty());
}

TEST_F(Unanswered, RequestIsDeliveredToABusThatComesBackInTime) {
    bus_.SetUp(false);
    Run();
    auto& client = Client();
    client.Sends(MessageOf("ASLoginRequest"));
    Pass(5);
    bus_.SetUp(true);
    Pass(20);
    zeb_.Answers("ASLoginRequest", MessageOf("ASLoginResponse", {{"ErrorNumber", "0"}}));
    EXPECT_EQ(client.Answer().Field("ErrorNumber"), "0");
}

TEST_F(Unanswered, RequestsOfOneClientBeyond64AreRefusedAtOnce) {
    auto& client = Client();
    for (int i = 0; i < 64; ++i)
        client.Sends(MessageOf("ASLoginRequest"));
    EXPECT_THAT(client.AnswerTypes(), IsEmpty());
    client.Sends(MessageOf("ASLoginRequest"));
    EXPECT_THAT(client.AnswerTypes(), ElementsAre("ASLoginResponse"));
    EXPECT_EQ(zeb_.requests.size(), 64U);
}

TEST(OpenRequests, OfOneConnectionHaveALimitOfBytesThatTheFirstMayExceed) {
    OpenRequests open;
    constexpr std::size_t kMiB = 1U << 20;
    EXPECT_TRUE(open.Add({"1", "A", {}, {}, 3 * kMiB}));
    EXPECT_FALSE(open.Add({"1", "A", {}, {}, 1}));
    EXPECT_TRUE(open.Add({"2", "A", {}, {}, kMiB}));
    EXPECT_TRUE(open.Add({"2", "A", {}, {}, kMiB}));
    EXPECT_FALSE(open.Add({"2", "A", {}, {}, 1}));
    open.Take("2", "A", "", "");
    EXPECT_TRUE(open.Add({"2", "A", {}, {}, kMiB}));
}

TEST(OpenRequests, OfAllConnectionsHaveALimitOfBytes) {
    OpenRequests open;
    for (int i = 0; i < 32; ++i)
        EXPECT_TRUE(open.Add({std::to_string(i), "A", {}, {}, 1U << 20}));
    EXPECT_FALSE(open.Add({"more", "A", {}, {}, 1}));
    open.Forget("7");
    EXPECT_TRUE(open.Add({"more", "A", {}, {}, 1}));
}

TEST(OpenRequests, AreForgottenWithTheirConnection) {
    OpenRequests open;
    open.Add({"1", "A"});
    open.Add({"2", "A"});
    open.Add({"1", "B"});
    open.Forget("1");
    EXPECT_FALSE(open.Take("1", "A", "", ""));
    EXPECT_TRUE(open.Take("2", "A", "", ""));
    EXPECT_FALSE(open.Oldest());
}

TEST(OpenRequests, WithATagAreNotAnsweredForThoseWithout) {
    OpenRequests open;
    open.Add({"1", "A", {}, "tagged"});
    open.Add({"1", "A", {}, {}});
    EXPECT_EQ(open.Take("1", "A", "", "")->tag, "");
    EXPECT_FALSE(open.Take("1", "A", "", "other"));
    EXPECT_EQ(open.Take("1", "A", "", "tagged")->tag, "tagged");
}

}  // namespace
}  // namespace kq
