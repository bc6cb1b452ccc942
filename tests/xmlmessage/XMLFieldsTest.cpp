// A message's named fields, nested elements and nested messages among them.
#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ErrorOf;
using testing::ExpectInvalidCall;

constexpr std::string_view kProfiles =
    R"(<Profiles lastUsed="Day"><Profile name="Day &amp; &quot;night&quot;"/></Profiles>)";

XMLMessage SessionInfo() {
    XMLMessage session("SessionInfo", "1");
    session.SetField("LoginID", "ann");
    session.SetField("Password", "  ");
    return session;
}

XMLMessage LoginReply() {
    XMLMessage reply("ASLoginResponse", "1");
    reply.SetField("ErrorNumber", "0");
    reply.SetMessageField("SessionInfo", SessionInfo());
    return reply;
}

XMLMessage Loaded(const std::string& xml) {
    XMLMessage message;
    message.LoadXML(xml);
    return message;
}

XMLMessage LoadedFromBus(const std::string& xml) {
    XMLMessage message;
    message.LoadBusXML(xml);
    return message;
}

TEST(XMLFields, ReadAbsentAsEmpty) {
    EXPECT_EQ(XMLMessage("A", "1").Field("ErrorNumber"), "");
    EXPECT_FALSE(XMLMessage("A", "1").HasField("ErrorNumber"));
}

TEST(XMLFields, AreThereWhenTheyAreEmpty) {
    XMLMessage message("A", "1");
    message.SetField("NewPassword", "");
    EXPECT_TRUE(message.HasField("NewPassword"));
    EXPECT_TRUE(Loaded(message.ToXML()).HasField("NewPassword"));
}

TEST(XMLFields, TellUpperFromLowerCase) {
    EXPECT_EQ(SessionInfo().Field("loginid"), "");
    EXPECT_EQ(SessionInfo().Field("LoginID"), "ann");
}

TEST(XMLFields, KeepTheOrderInWhichTheyWereSet) {
    XMLMessage message("A", "1");
    for (const auto* name : {"C", "A", "B"})
        message.SetField(name, name);
    message.SetField("A", "again");
    EXPECT_EQ(message.ToXML(), R"(<ASMessage type="A" version="1"><C>C</C><A>again</A><B>B</B></ASMessage>)");
}

TEST(XMLFields, AreReplacedWithAllOfTheSameName) {
    XMLMessage message("A", "1");
    for (const auto* name : {"X", "TransID", "Y", "TransID", "TransID"})
        message.Root().Add(name, "sent");
    message.SetField("TransID", "7");
    EXPECT_EQ(message.ToXML(),
              R"(<ASMessage type="A" version="1"><X>sent</X><TransID>7</TransID><Y>sent</Y></ASMessage>)");
}

TEST(XMLFields, ReadTheFirstOfTheSameName) {
    XMLMessage message("A", "1");
    message.Root().Add("F", "first");
    message.Root().Add("F", "second");
    EXPECT_EQ(message.Field("F"), "first");
}

TEST(XMLFields, AreRemovedWithAllOfTheSameName) {
    XMLMessage message("A", "1");
    message.Root().Add("F", "first");
    message.Root().Add("F", "second");
    message.RemoveField("F");
    EXPECT_FALSE(message.HasField("F"));
}

TEST(XMLFields, AreAsTheyWereWhenSettingOneIsRefused) {
    auto message = SessionInfo();
    EXPECT_NE(ErrorOf([&] { message.SetField("LoginID", "\x01"); }).Description().find("LoginID"),
              std::string::npos);
    ExpectInvalidCall([&] { message.SetField("Login ID", "bob"); });
    ExpectInvalidCall([&] { message.SetField(XMLElement()); });
    EXPECT_EQ(message, SessionInfo());
}

TEST(XMLFields, TakeAWholeElementInPlaceOfAText) {
    XMLMessage message("A", "1");
    message.SetField("List", "text");
    XMLElement list("List");
    list.Add("Item", "<1>");
    message.SetField(list);
    EXPECT_EQ(message.Field("List"), "<List><Item>&lt;1&gt;</Item></List>");
}

TEST(XMLFields, ReadANestedElementAsItsXMLWithAttributes) {
    XMLMessage message("A", "1");
    message.SetXMLField("Profiles", kProfiles);
    EXPECT_EQ(message.Field("Profiles"), kProfiles);
    EXPECT_EQ(Loaded(message.ToXML()).Field("Profiles"), kProfiles);
}

TEST(XMLFields, ReadAnElementOfAttributesOnlyAsItsXML) {
    XMLMessage message("A", "1");
    message.SetXMLField("Profiles", R"(<Profiles lastUsed=""/>)");
    EXPECT_EQ(Loaded(message.ToXML()).Field("Profiles"), R"(<Profiles lastUsed=""/>)");
}

TEST(XMLFields, ReadATextAsTextEvenWithAnAttributeBesideIt) {
    EXPECT_EQ(Loaded(R"(<ASMessage type="A"><AppID note="x">VL2</AppID></ASMessage>)").Field("AppID"), "VL2");
}

TEST(XMLFields, GiveXMLTheFieldsName) {
    XMLMessage message("A", "1");
    message.SetXMLField("Data", "<?xml version='1.0'?><Other><x>1</x></Other>");
    EXPECT_EQ(message.Field("Data"), "<Data><x>1</x></Data>");
}

TEST(XMLFields, RefuseXMLThatIsNotOneWellFormedElement) {
    auto message = SessionInfo();
    for (const auto* xml : {"", "text", "<a>", "<a/><b/>", "<a>text<b/></a>", "<!DOCTYPE a><a/>"}) {
        EXPECT_EQ(ErrorOf([&] { message.SetXMLField("LoginID", xml); }).Number(), XMLMessage::kNotAMessage)
            << xml;
    }
    EXPECT_EQ(message, SessionInfo());
}

TEST(NestedMessage, IsAnElementWithTheMessagesHeader) {
    EXPECT_EQ(LoginReply().Field("SessionInfo"),
              R"(<SessionInfo type="SessionInfo" version="1"><LoginID>ann</LoginID><Password>  </Password>)"
              "</SessionInfo>");
}

TEST(NestedMessage, LoadsFromTheTextOfItsField) {
    EXPECT_EQ(Loaded(LoginReply().Field("SessionInfo")), SessionInfo());
}

TEST(NestedMessage, LoadsFromAReplyThatWasReceived) {
    EXPECT_EQ(Loaded(Loaded(LoginReply().ToXML()).Field("SessionInfo")), SessionInfo());
}

TEST(NestedMessage, LoadsAfterTheWayOverTheBus) {
    const auto bus = LoadedFromBus(LoginReply().ToBusMessage("ZEBSchemas").ToBusXML());
    EXPECT_EQ(Loaded(bus.Field("SessionInfo")), SessionInfo());
    EXPECT_EQ(Loaded(Loaded(bus.ToClientMessage().ToXML()).Field("SessionInfo")), SessionInfo());
}

TEST(NestedMessage, LoadsWhenItsElementWasCarriedOverAlone) {
    XMLMessage client("ASLoginResponse", "1");
    client.SetField(*LoginReply().Root().Find("SessionInfo"));
    EXPECT_EQ(Loaded(client.Field("SessionInfo")), SessionInfo());
}

TEST(NestedMessage, LoadsWithoutAnyField) {
    XMLMessage reply("ASLoginResponse", "1");
    reply.SetMessageField("SessionInfo", XMLMessage("SessionInfo", ""));
    EXPECT_EQ(Loaded(Loaded(reply.ToXML()).Field("SessionInfo")), XMLMessage("SessionInfo", ""));
}

TEST(NestedMessage, KeepsItsTypeUnderAnotherName) {
    XMLMessage reply("A", "1");
    reply.SetMessageField("Record", SessionInfo());
    EXPECT_EQ(Loaded(reply.Field("Record")).Type(), "SessionInfo");
}

TEST(NestedMessage, MayBeGivenAsAMessagesText) {
    XMLMessage reply("A", "1");
    reply.SetXMLField("Record", "<ASMessage type='SessionInfo'><LoginID>ann</LoginID></ASMessage>");
    EXPECT_EQ(Loaded(reply.Field("Record")).Field("LoginID"), "ann");
}

TEST(NestedMessage, MayHoldNestedMessages) {
    XMLMessage outer("Outer", "1");
    outer.SetMessageField("Reply", LoginReply());
    EXPECT_EQ(Loaded(Loaded(Loaded(outer.ToXML()).Field("Reply")).Field("SessionInfo")), SessionInfo());
}

TEST(NestedMessage, MayBeACopyOfTheMessageItself) {
    auto message = SessionInfo();
    message.SetMessageField("Copy", message);
    EXPECT_EQ(Loaded(message.Field("Copy")), SessionInfo());
}

TEST(NestedMessage, NeedsAType) {
    ExpectInvalidCall([] { XMLMessage("A", "1").SetMessageField("B", XMLMessage()); });
}

}  // namespace
}  // namespace kq
