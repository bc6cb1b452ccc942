// What single messages promise beyond the order of their fields.
#include <gtest/gtest.h>

#include <kqappsession/WebData.h>

#include "messages/ASMessages.h"
#include "messages/MessagesTesting.h"
#include "messages/ParseASData.h"
#include "messages/SampleMessages.h"

namespace kq {
namespace {

TEST(IsTrue, HoldsForTrueExactly) {
    EXPECT_TRUE(IsTrue("True"));
    for (const char* other : {"true", "TRUE", "True ", "1", "-1", "Yes", ""})
        EXPECT_FALSE(IsTrue(other)) << other;
}

TEST(EveryMessage, HasVersionOne) {
#define KQ_NO_FIELD(kind, name, meaning)
#define KQ_VERSION(channel, type, purpose, fields) \
    EXPECT_EQ(type().Build().Version(), "1");      \
    EXPECT_EQ(type().Build().Type(), #type);
    KQ_AS_MESSAGES(KQ_VERSION, KQ_NO_FIELD)
#undef KQ_VERSION
#undef KQ_NO_FIELD
}

TEST(BusMessages, StandInTheLoginServersSchemaWithoutADestination) {
    const XMLMessage message = RequestASRegistration().Build();
    EXPECT_EQ(message.Schema(), "ZEBSchemas");
    EXPECT_TRUE(message.Destination().Empty());
    EXPECT_EQ(ASLoginRequest().Build().Schema(), "");
}

TEST(Restrictions, AreLeftOutEachOnItsOwn) {
    ASValidateClientRequest request;
    EXPECT_FALSE(request.Build().HasField("RestrictIP"));
    EXPECT_FALSE(request.Build().HasField("RestrictPort"));
    request.RestrictPort = "7000";
    EXPECT_FALSE(request.Build().HasField("RestrictIP"));
    EXPECT_EQ(request.Build().Field("RestrictPort"), "7000");
    ASLoginRequest login;
    login.RestrictIP = "192.0.2.1";
    EXPECT_EQ(login.Build().Field("RestrictIP"), "192.0.2.1");
    EXPECT_FALSE(login.Build().HasField("RestrictPort"));
}

TEST(LoginRequest, AlwaysWantsTranslationTableAndProfiles) {
    ASLoginRequest request;
    EXPECT_EQ(request.Build().Field("Request"), "T,P");
    request.Request = "X";
    EXPECT_EQ(request.Build().Field("Request"), "T,P");
}

TEST(LoginRequest, ReadsWhatAnotherProgramWants) {
    XMLMessage message("ASLoginRequest", "1");
    message.SetField("Request", "T");
    EXPECT_EQ(ASLoginRequest::Read(message).Request, "T");
}

TEST(LoginRequest, CarriesAnEmptyNewPasswordUnlessItIsChanged) {
    const XMLMessage message = ASLoginRequest().Build();
    EXPECT_TRUE(message.HasField("NewPassword"));
    EXPECT_EQ(message.Field("NewPassword"), "");
}

TEST(RegisterRequest, CarriesTheLocaleAsDecimalText) {
    ASRegisterRequest request;
    request.LocaleID = std::to_string(1033);
    EXPECT_EQ(request.Build().Field("LocaleID"), "1033");
}

TEST(RegisterResponse, OfAGrantedRegistrationHasTheErrorNumberAlone) {
    ASRegisterResponse response;
    response.ErrorNum = "0";
    XMLMessage expected("ASRegisterResponse", "1");
    expected.SetField("ErrorNum", "0");
    EXPECT_EQ(response.Build(), expected);
}

TEST(DownloadClientRequest, HasNoFields) {
    EXPECT_TRUE(ASDownloadClientRequest().Build().Root().Children().empty());
}

TEST(MissingFields, ReadAsEmptyTexts) {
    const auto response = ASLoginResponse::Read(XMLMessage("ASLoginResponse", "1"));
    EXPECT_EQ(response.ErrorNumber + response.SessionInfo + response.TranslationTable + response.Profiles,
              "");
    EXPECT_TRUE(ASPasswordChangeRequest::Read(XMLMessage()).OldPassword.Empty());
}

TEST(LoginResponse, BringsTextsThatTheLoadersOfItsDataAccept) {
    XMLMessage received;
    received.LoadXML(Sample<ASLoginResponse>().Build().ToXML());
    const auto response = ASLoginResponse::Read(received);
    EXPECT_EQ(ParseASData(response.TranslationTable).kind, ASDataKind::TranslationTable);
    EXPECT_EQ(ParseASData(response.Profiles).kind, ASDataKind::Profiles);
    EXPECT_EQ(ParseASData(response.SessionInfo).kind, ASDataKind::XMLMessage);
}

TEST(LoginResponse, BringsTheSessionsRecordAsAMessage) {
    XMLMessage received;
    received.LoadXML(Sample<ASLoginResponse>().Build().ToXML());
    XMLMessage record;
    record.LoadXML(ASLoginResponse::Read(received).SessionInfo);
    EXPECT_EQ(record, Sample<SessionInfo>().Build());
}

TEST(LoginResponse, IsNotBuiltFromATextThatIsNoRecord) {
    ASLoginResponse response;
    response.SessionInfo = "no message";
    EXPECT_EQ(ErrorOf([&] { response.Build(); }).Number(), XMLMessage::kNotAMessage);
}

TEST(ProfilesUpdate, CarriesTheCollectionAsItsLastField) {
    const XMLMessage message = Sample<ASProfilesUpdate>().Build();
    EXPECT_EQ(message.Root().Children().back().Name(), "Profiles");
    Profiles received;
    received.LoadXML(ASProfilesUpdate::Read(message).Profiles);
    EXPECT_TRUE(received.Exists("Main"));
}

TEST(BroadcastInfo, HasNoSessionsUntilThereIsAList) {
    ApplicationInfo info;
    EXPECT_EQ(info.Build().Root().Find("Sessions"), nullptr);
    info.Sessions.emplace();
    EXPECT_NE(info.Build().Root().Find("Sessions"), nullptr) << "a full list of no session is a list";
}

TEST(BroadcastInfo, NamesEveryInterfaceVersionAndSession) {
    const auto sample = Sample<ASBroadcastInfo>();
    XMLMessage received;
    received.LoadBusXML(sample.Build().ToBusXML());
    const auto info = ASBroadcastInfo::Read(received).ApplicationInfos->ApplicationInfo;
    EXPECT_EQ(info->InterfaceVersions, (std::vector<std::string>{"1.0", "2.0"}));
    EXPECT_EQ(info->Sessions, (std::vector<std::string>{"S17", "S18"}));
    EXPECT_EQ(received.Root().TextOf("ApplicationInfos/ApplicationInfo/AppID"), "Demo");
    EXPECT_EQ(received.Root().TextOf("ASRequestInfo/ReturnMsgType"), "AS");
}

TEST(RegistrationResponse, IsARefusalWhenItHoldsAnErrorResponse) {
    ASRegistrationResponse response;
    EXPECT_FALSE(ASRegistrationResponse::Read(response.Build()).ErrorResponse);
    response.ErrorResponse.emplace().ErrorCode = "7712";
    EXPECT_EQ(ASRegistrationResponse::Read(response.Build()).ErrorResponse->ErrorCode, "7712");
}

TEST(LogoutUser, ReadsEveryChildOfItsListInOrder) {
    XMLMessage message("ASLogoutUser", "1");
    XMLElement& list = message.Root().Add("SessionIDs");
    list.Add("SessionID", "S1");
    list.Add("Other", "S2");
    EXPECT_EQ(ASLogoutUser::Read(message).SessionIDs, (std::vector<std::string>{"S1", "S2"}));
}

TEST(Fields, KeepAnyTextThatXMLCanCarry) {
    ASPasswordChangeRequest request;
    request.LoginID = "<ann> & \"bob\"";
    request.NewPassword = Secret("  pass\u00e9 ]]> \n ");
    XMLMessage received;
    received.LoadXML(request.Build().ToXML());
    EXPECT_EQ(ASPasswordChangeRequest::Read(received).LoginID, request.LoginID);
    EXPECT_EQ(ASPasswordChangeRequest::Read(received).NewPassword.Reveal(), request.NewPassword.Reveal());
}

}  // namespace
}  // namespace kq
