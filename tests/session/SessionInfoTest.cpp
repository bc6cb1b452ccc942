// A session's record: what it reads out of its message and what filling writes into it.
#include <gtest/gtest.h>

#include "session/SessionTesting.h"

namespace kq {
namespace {

constexpr auto kNotSet = NumberOf(RuntimeError::ObjectNotSet);
constexpr auto kMismatch = NumberOf(RuntimeError::TypeMismatch);
constexpr auto kOverflow = NumberOf(RuntimeError::Overflow);

// A connection that is only held, never called.
std::shared_ptr<APClient> SomeConnection() {
    auto anchor = std::make_shared<std::max_align_t>();
    return {anchor, reinterpret_cast<APClient*>(anchor.get())};
}

struct SessionInfo : testing::Test {
    std::shared_ptr<XMLMessage> message = SessionMessage();
    KQAppSessionInfo session;
};

TEST_F(SessionInfo, ReadsEachTextFromTheFieldOfItsName) {
    const std::pair<const char*, std::string (KQAppSessionInfo::*)() const> texts[] = {
        {"AppID", &KQAppSessionInfo::AppID},
        {"SessionID", &KQAppSessionInfo::SessionID},
        {"LoginID", &KQAppSessionInfo::LoginID},
        {"FirstName", &KQAppSessionInfo::FirstName},
        {"LastName", &KQAppSessionInfo::LastName},
        {"EnterpriseID", &KQAppSessionInfo::EnterpriseID},
        {"OperatorID", &KQAppSessionInfo::OperatorID},
        {"Language", &KQAppSessionInfo::Language},
        {"TZ", &KQAppSessionInfo::TZ},
        {"DST", &KQAppSessionInfo::DST},
        {"BUID", &KQAppSessionInfo::BUID},
        {"Password", &KQAppSessionInfo::Password}};
    for (const auto& [name, read] : texts)
        message->SetField(name, std::string("value of ") + name);
    SessionRecords::Fill(session, message);
    for (const auto& [name, read] : texts)
        EXPECT_EQ((session.*read)(), std::string("value of ") + name);
}

TEST_F(SessionInfo, ReadsAnAbsentFieldAsEmptyText) {
    SessionRecords::Fill(session, message);
    EXPECT_EQ(session.LoginID(), "");
}

TEST_F(SessionInfo, ReadsTheMessageAsItIsWhenAsked) {
    SessionRecords::Fill(session, message);
    message->SetField("Language", "1033");
    EXPECT_EQ(session.Language(), "1033");
    message->SetField("Language", "2058");
    EXPECT_EQ(session.Language(), "2058");
}

TEST_F(SessionInfo, ConvertsTheUsersNumber) {
    SessionRecords::Fill(session, message);
    message->SetField("UserUID", " 55 ");
    EXPECT_EQ(session.UserUID(), 55);
}

TEST_F(SessionInfo, RaisesTypeMismatchForAUsersNumberThatIsNone) {
    SessionRecords::Fill(session, message);
    EXPECT_EQ(NumberRaisedBy([&] { session.UserUID(); }), kMismatch) << "absent";
    for (const char* text : {"", "ann", "55x"}) {
        message->SetField("UserUID", text);
        EXPECT_EQ(NumberRaisedBy([&] { session.UserUID(); }), kMismatch) << text;
    }
    message->SetField("UserUID", "2147483648");
    EXPECT_EQ(NumberRaisedBy([&] { session.UserUID(); }), kOverflow);
}

TEST_F(SessionInfo, SplitsItsListsAtEveryBar) {
    message->SetField("BUIDUnionList", "7|9|");
    message->SetField("PrivilegeList", " Read |Write");
    SessionRecords::Fill(session, message);
    EXPECT_EQ(session.BUIDList(), (std::vector<std::string>{"7", "9", ""}));
    EXPECT_EQ(session.PrivilegeList(), (std::vector<std::string>{" Read ", "Write"}));
}

TEST_F(SessionInfo, ReadsItsBusinessUnitsFromAnotherFieldThanTheNamesake) {
    message->SetField("BUIDList", "1|2");
    SessionRecords::Fill(session, message);
    EXPECT_EQ(session.BUIDList(), std::vector<std::string>{""});
}

TEST_F(SessionInfo, HasOneEmptyElementInAListOfAnEmptyField) {
    SessionRecords::Fill(session, message);
    EXPECT_EQ(session.PrivilegeList(), std::vector<std::string>{""});
}

TEST_F(SessionInfo, RaisesObjectNotSetBeforeItIsFilled) {
    EXPECT_EQ(NumberRaisedBy([&] { session.AppID(); }), kNotSet);
    EXPECT_EQ(NumberRaisedBy([&] { session.UserUID(); }), kNotSet);
    EXPECT_EQ(NumberRaisedBy([&] { session.BUIDList(); }), kNotSet);
    EXPECT_EQ(NumberRaisedBy([&] { session.PrivilegeList(); }), kNotSet);
    EXPECT_EQ(NumberRaisedBy([&] { session.Password(); }), kNotSet);
}

TEST_F(SessionInfo, HasNeitherMessageNorConnectionBeforeItIsFilled) {
    EXPECT_FALSE(session.IsInitialized());
    EXPECT_EQ(session.Export(), nullptr);
    EXPECT_EQ(session.Client(), nullptr);
}

TEST_F(SessionInfo, IsInitializedByFilling) {
    SessionRecords::Fill(session, message);
    EXPECT_TRUE(session.IsInitialized());
}

TEST_F(SessionInfo, HandsOutTheMessageItselfAndNoCopy) {
    SessionRecords::Fill(session, message);
    EXPECT_EQ(session.Export(), message);
    session.Export()->SetField("BUID", "9");
    EXPECT_EQ(session.BUID(), "9");
}

TEST_F(SessionInfo, WritesIdsAndPasswordIntoTheMessage) {
    SessionRecords::Fill(session, message, "S1", "Demo", nullptr, "secret");
    EXPECT_EQ(message->Field("SessionID"), "S1");
    EXPECT_EQ(message->Field("AppID"), "Demo");
    EXPECT_EQ(message->Field("Password"), "secret");
}

TEST_F(SessionInfo, KeepsWhatTheMessageCarriesWhereItIsFilledWithNothing) {
    message->SetField("SessionID", "S9");
    message->SetField("AppID", "Other");
    SessionRecords::Fill(session, message, "", "", nullptr, "");
    EXPECT_EQ(session.SessionID(), "S9");
    EXPECT_EQ(session.AppID(), "Other");
    EXPECT_FALSE(message->HasField("Password"));
}

TEST_F(SessionInfo, KeepsItsConnectionWhenFilledWithoutOne) {
    const auto connection = SomeConnection();
    SessionRecords::Fill(session, message, "S1", "Demo", connection);
    SessionRecords::Fill(session, message);
    EXPECT_EQ(session.Client(), connection);
}

TEST_F(SessionInfo, TakesAnotherConnectionOrNone) {
    const auto connection = SomeConnection();
    SessionRecords::SetClient(session, connection);
    EXPECT_EQ(session.Client(), connection);
    SessionRecords::SetClient(session, nullptr);
    EXPECT_EQ(session.Client(), nullptr);
}

}  // namespace
}  // namespace kq
