// The two forms of a message, its header and the conversions between client and bus.
#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ErrorOf;
using testing::ExpectInvalidCall;

constexpr std::string_view kClientForm =
    R"(<ASMessage type="ASLoginRequest" version="1"><AppID>VL2</AppID><LoginID>ann</LoginID></ASMessage>)";
constexpr std::string_view kBusForm =
    R"(<ASBusMessage type="ASBroadcastInfo" version="1" schema="ZEBSchemas" to="ZEB" subtype="Broadcast">)"
    "<InfoState>C</InfoState></ASBusMessage>";

XMLMessage LoginRequest() {
    XMLMessage message("ASLoginRequest", "1");
    message.SetField("AppID", "VL2");
    message.SetField("LoginID", "ann");
    return message;
}

XMLMessage Broadcast() {
    XMLMessage message("ASBroadcastInfo", "1");
    message.SetSchema("ZEBSchemas");
    message.SetDestination({"ZEB", "Broadcast"});
    message.SetField("InfoState", "C");
    return message;
}

XMLMessage Loaded(std::string_view xml) {
    XMLMessage message;
    message.LoadXML(xml);
    return message;
}

XMLMessage LoadedFromBus(std::string_view xml) {
    XMLMessage message;
    message.LoadBusXML(xml);
    return message;
}

TEST(XMLMessage, WritesTheClientForm) {
    EXPECT_EQ(LoginRequest().ToXML(), kClientForm);
}

TEST(XMLMessage, ReadsTheClientForm) {
    EXPECT_EQ(Loaded(kClientForm), LoginRequest());
}

TEST(XMLMessage, WritesTheBusForm) {
    EXPECT_EQ(Broadcast().ToBusXML(), kBusForm);
}

TEST(XMLMessage, ReadsTheBusForm) {
    EXPECT_EQ(LoadedFromBus(kBusForm), Broadcast());
}

TEST(XMLMessage, LeavesAnEmptyDestinationOutOfTheBusForm) {
    auto message = Broadcast();
    message.SetDestination({"ZEB", ""});
    EXPECT_NE(message.ToBusXML().find(R"( to="ZEB">)"), std::string::npos);
    message.SetDestination({});
    EXPECT_NE(message.ToBusXML().find(R"(schema="ZEBSchemas">)"), std::string::npos);
    EXPECT_EQ(LoadedFromBus(message.ToBusXML()), message);
}

TEST(XMLMessage, ReadsAnAbsentVersionAsEmpty) {
    EXPECT_EQ(Loaded("<ASMessage type='A'/>").Version(), "");
    EXPECT_EQ(LoadedFromBus("<ASBusMessage type='A'/>"), Loaded("<ASMessage type='A'/>"));
}

TEST(XMLMessage, IgnoresOtherAttributesOfTheRoot) {
    EXPECT_EQ(Loaded("<ASMessage type='A' version='1' xmlns:b='urn:b' b:c='1' d='2'/>"),
              XMLMessage("A", "1"));
}

TEST(XMLMessage, IgnoresNamespacesInItsFields) {
    EXPECT_EQ(Loaded("<ASMessage type='A' version='1'><F xmlns='urn:x'/></ASMessage>").Field("F"), "");
}

TEST(XMLMessage, IgnoresBlanksCommentsAndInstructionsBetweenFields) {
    const auto message = Loaded(
        "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8' standalone='yes'?>\n<!-- a -->"
        "<?go on?><ASMessage type='A' version='1'>\r\n\t<F>x<!-- b -->y</F>\n</ASMessage>\n");
    EXPECT_EQ(message.ToXML(), R"(<ASMessage type="A" version="1"><F>xy</F></ASMessage>)");
}

TEST(XMLMessage, ReadsCDATAAsText) {
    EXPECT_EQ(Loaded("<ASMessage type='A'><F>1<![CDATA[<&]]>2<![CDATA[ ]]></F></ASMessage>").Field("F"),
              "1<&2 ");
}

TEST(XMLMessage, ReadsReferencesOfEveryKind) {
    EXPECT_EQ(Loaded("<ASMessage type='A'><F>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;&#00066;</F></ASMessage>")
                  .Field("F"),
              "<>&\"'A\xF0\x9F\x98\x80"
              "B");
}

TEST(XMLMessage, ReadsALineEndAsALineFeedUnlessItIsAReference) {
    EXPECT_EQ(Loaded("<ASMessage type='A'><F>a\r\nb\rc&#13;&#10;d</F></ASMessage>").Field("F"),
              "a\nb\nc\r\nd");
}

TEST(XMLMessage, IsTheSameTextEveryTimeItIsWritten) {
    EXPECT_EQ(Loaded(LoginRequest().ToXML()).ToXML(), LoginRequest().ToXML());
}

TEST(XMLMessage, WithoutATypeCannotBeWritten) {
    ExpectInvalidCall([] { XMLMessage().ToXML(); });
    ExpectInvalidCall([] { XMLMessage().ToBusXML(); });
}

TEST(XMLMessage, RefusesATypeThatIsNoName) {
    auto message = LoginRequest();
    ExpectInvalidCall([&] { message.SetType("AS Login"); });
    ExpectInvalidCall([&] { message.SetType(""); });
    EXPECT_EQ(message, LoginRequest());
}

TEST(XMLMessage, KeepsItsFieldsWhenTheTypeChanges) {
    auto message = LoginRequest();
    message.SetType("ASLoginResponse");
    EXPECT_EQ(message.Type(), "ASLoginResponse");
    EXPECT_EQ(message.Field("LoginID"), "ann");
}

TEST(XMLMessage, RefusesHeaderValuesThatXMLCannotCarry) {
    auto message = Broadcast();
    ExpectInvalidCall([&] { message.SetVersion("\x01"); });
    ExpectInvalidCall([&] { message.SetSchema("\xFF"); });
    ExpectInvalidCall([&] { message.SetDestination({"AS", "\x7\x7"}); });
    EXPECT_EQ(message, Broadcast());
}

TEST(XMLMessage, WithATextBesideItsFieldsCannotBeWritten) {
    auto message = XMLMessage("A", "1");
    message.Root().SetText("text");
    ExpectInvalidCall([&] { message.ToXML(); });
}

TEST(XMLMessage, WithAnElementOfTextAndChildrenCannotBeWritten) {
    auto message = LoginRequest();
    message.Root().Children()[0].Children().emplace_back("x");
    ExpectInvalidCall([&] { message.ToXML(); });
}

TEST(XMLMessage, WithANamelessElementCannotBeWritten) {
    auto message = LoginRequest();
    message.Root().Children().emplace_back();
    ExpectInvalidCall([&] { message.ToXML(); });
}

TEST(XMLMessage, IsWrittenUpToADepthOf256) {
    XMLMessage message("A", "1");
    auto* deepest = &message.Root();
    for (int depth = 2; depth <= 256; ++depth)
        deepest = &deepest->Add("a");
    XMLMessage loaded;
    loaded.LoadXML(message.ToXML(), {.depth = 256});
    EXPECT_EQ(loaded, message);
    deepest->Add("a");
    ExpectInvalidCall([&] { message.ToXML(); });
}

TEST(XMLMessage, BecomesABusMessageWithoutDestination) {
    const auto bus = Broadcast().ToBusMessage("Other");
    EXPECT_EQ(bus.Schema(), "Other");
    EXPECT_TRUE(bus.Destination().Empty());
    EXPECT_EQ(bus.Root(), Broadcast().Root());
    EXPECT_EQ(bus.Version(), "1");
}

TEST(XMLMessage, BecomesAClientMessageWithoutSchemaAndDestination) {
    auto expected = XMLMessage("ASBroadcastInfo", "1");
    expected.SetField("InfoState", "C");
    EXPECT_EQ(Broadcast().ToClientMessage(), expected);
    EXPECT_EQ(LoginRequest().ToBusMessage("ZEBSchemas").ToClientMessage(), LoginRequest());
}

TEST(XMLMessage, LosesSchemaAndDestinationWhenAClientFormIsLoaded) {
    auto message = Broadcast();
    message.LoadXML(kClientForm);
    EXPECT_EQ(message, LoginRequest());
}

TEST(XMLMessage, IsAsItWasWhenLoadingFails) {
    auto message = Broadcast();
    ErrorOf([&] { message.LoadXML("<ASMessage type='B'><F>1</F>text</ASMessage>"); });
    ErrorOf([&] { message.LoadXML("<ASMessage type='B'><F>1</F>"); });
    ErrorOf([&] { message.LoadBusXML("<ASBusMessage type='B'><F><a:b/></F></ASBusMessage>"); });
    EXPECT_EQ(message, Broadcast());
}

TEST(XMLMessage, IsEqualOnlyWithTheSameHeaderAndFields) {
    auto other = Broadcast();
    EXPECT_EQ(other, Broadcast());
    other.SetDestination({"ZEB", ""});
    EXPECT_NE(other, Broadcast());
    EXPECT_NE(XMLMessage("A", "1"), XMLMessage("A", "2"));
    EXPECT_NE(XMLMessage("A", "1"), XMLMessage("A", "1").ToBusMessage("S"));
}

TEST(XMLMessage, IsCopiedWhole) {
    const auto original = LoginRequest();
    auto copy = original;
    copy.SetField("LoginID", "bob");
    EXPECT_EQ(original.Field("LoginID"), "ann");
}

}  // namespace
}  // namespace kq
