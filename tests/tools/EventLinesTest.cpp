#include <gtest/gtest.h>

#include "session/SessionRecords.h"
#include "tools/kqappserver/EventLines.h"

namespace kq {
namespace {

std::shared_ptr<KQAppSessionInfo> SessionOf(const std::string& id, const std::string& user) {
    auto message = std::make_shared<XMLMessage>("SessionInfo", "1");
    message->SetField("LoginID", user);
    message->SetField("FirstName", "Ann");
    message->SetField("LastName", "\"A\" Lee");
    auto session = std::make_shared<KQAppSessionInfo>();
    SessionRecords::Fill(*session, message, id, "Demo", nullptr, "s3cret");
    return session;
}

Block BlockOf(const XMLMessage& message) {
    return {DataType::XML, "", message.ToXML()};
}

TEST(EventLines, NameSessionAndUser) {
    EXPECT_EQ("Connected session=S17 user=ann", SessionLine("Connected", *SessionOf("S17", "ann")));
}

TEST(EventLines, StayOneLineWhateverAUserIsCalled) {
    EXPECT_EQ("Connected session=S17 user=a\\u000ab", SessionLine("Connected", *SessionOf("S17", "a\nb")));
}

TEST(EventLines, ShowAMessagesText) {
    XMLMessage message("KQAppMessage", "1");
    message.SetField("Text", "Say \"hello\"\nto all");
    const Block block = BlockOf(message);
    EXPECT_EQ("ReceivedData session=S17 type=KQAppMessage bytes=" + std::to_string(block.data.size()) +
                  R"( Text="Say \"hello\"\u000ato all")",
              ReceivedDataLine(*SessionOf("S17", "ann"), block));
}

TEST(EventLines, ShowAMessageWithoutText) {
    const Block block = BlockOf(XMLMessage("Ping", "1"));
    EXPECT_EQ("ReceivedData session=S17 type=Ping bytes=" + std::to_string(block.data.size()),
              ReceivedDataLine(*SessionOf("S17", "ann"), block));
}

TEST(EventLines, SayWhyDataIsNoMessage) {
    const std::string line = ReceivedDataLine(*SessionOf("S17", "ann"), {DataType::XML, "", "no xml"});
    EXPECT_EQ("ReceivedData session=S17 bytes=6 \"", line.substr(0, 34));
}

TEST(EventLines, ShowErrorsWithNumberAndSentence) {
    EXPECT_EQ("Error 10054 The connection was reset.",
              ErrorEventLine("Error", 10054, "The connection was reset."));
}

TEST(EventLines, ShowBusMessagesByTheirType) {
    const XMLMessage message("ASRegistrationResponse", "1");
    EXPECT_EQ("XMLBusReceive ASRegistrationResponse", BusLine("XMLBusReceive", message));
    EXPECT_EQ("XMLBusReceive ASRegistrationResponse error=7 \"No such session\"",
              BusLine("XMLBusReceive", message, 7, "No such session"));
}

TEST(EventLines, ListNoSessions) {
    EXPECT_EQ(std::vector<std::string>{"Sessions 0"}, SessionsLines(KQAppSessionInfos()));
}

TEST(EventLines, ListSessionsWithTheirNamesAndWithoutTheirPasswords) {
    KQAppSessionInfos sessions;
    SessionRecords::Add(sessions, SessionOf("S17", "ann"));
    SessionRecords::Add(sessions, SessionOf("S18", "bob"));
    EXPECT_EQ((std::vector<std::string>{"Sessions 2", R"(Session session=S17 user=ann name="Ann \"A\" Lee")",
                                        R"(Session session=S18 user=bob name="Ann \"A\" Lee")"}),
              SessionsLines(sessions));
}

}  // namespace
}  // namespace kq
