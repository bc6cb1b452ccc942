// Texts that are no message: other roots, faults of form, and texts over a limit.
#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ErrorOf;
using testing::Nested;
using testing::Repeated;

struct Refused {
    std::string name;
    std::string text;
    std::string reason;  // part of the description
    std::size_t offset;
};

void PrintTo(const Refused& refused, std::ostream* out) {
    *out << refused.name;
}

void ExpectNoMessage(const Error& error, const Refused& refused) {
    EXPECT_EQ(error.Number(), XMLMessage::kNotAMessage);
    EXPECT_EQ(error.Source(), "KQXMLMessageLib");
    EXPECT_NE(error.Description().find(refused.reason), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find("(byte " + std::to_string(refused.offset) + ")"), std::string::npos)
        << error.Description();
}

std::string Message(std::string_view fields) {
    return "<ASMessage type='A'>" + std::string(fields) + "</ASMessage>";  // the fields start at byte 20
}

class TextThatIsNoMessage : public ::testing::TestWithParam<Refused> {};

TEST_P(TextThatIsNoMessage, IsRefused) {
    ExpectNoMessage(ErrorOf([] { XMLMessage().LoadXML(GetParam().text); }), GetParam());
}

std::string NameOf(const ::testing::TestParamInfo<Refused>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Root, TextThatIsNoMessage,
    ::testing::Values(Refused{"Empty", "", "no element", 0}, Refused{"Blank", " \n", "no element", 2},
                      Refused{"PlainText", "hello", "text outside", 0},
                      Refused{"Profiles", "<Profiles lastUsed=''/>", "root element", 0},
                      Refused{"TranslationTable", "<TranslationTable language='en'/>", "root element", 0},
                      Refused{"DataTable", "<DataTable name='type' columns='version'/>", "root element", 0},
                      Refused{"Html", "<!-- x --><html><body/></html>", "root element", 10},
                      Refused{"LowerCaseRoot", "<asmessage type='A'/>", "root element", 0},
                      Refused{"TypeAlone", "<SessionInfo type='A'/>", "root element", 0},
                      Refused{"VersionAlone", "<SessionInfo version='1'/>", "root element", 0},
                      Refused{"BusForm", "<ASBusMessage type='A' version='1'/>", "root element", 0},
                      Refused{"WithoutType", "<ASMessage version='1'/>", "type", 0},
                      Refused{"EmptyType", "<ASMessage type=''/>", "type", 0},
                      Refused{"TypeThatIsNoName", "<ASMessage type='a b'/>", "type", 0},
                      Refused{"EmptyTypeOfANestedMessage", "<SessionInfo type='' version='1'/>", "type", 0}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Fields, TextThatIsNoMessage,
    ::testing::Values(Refused{"TextBesideFields", Message("x<F/>"), "beside", 0},
                      Refused{"TextInPlaceOfFields", Message("x"), "beside", 0},
                      Refused{"TextBesideChildren", Message("<F><G/>x</F>"), "<F> has a text beside", 20},
                      Refused{"CDATABesideChildren", Message("<F><G/><![CDATA[x]]></F>"), "beside", 20},
                      Refused{"NameWithColon", Message("<a:F/>"), "<a:F> cannot be the name", 20},
                      Refused{"NameOutsideAscii", Message("<\xC3\xA9/>"), "cannot be the name", 20},
                      Refused{"ReservedName", Message("<xmlF/>"), "cannot be the name", 20}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Form, TextThatIsNoMessage,
    ::testing::Values(
        Refused{"Doctype", "<!DOCTYPE a><ASMessage type='A'/>", "DOCTYPE", 0},
        Refused{"DoctypeWithEntities", "<!DOCTYPE a [<!ENTITY b 'c'>]><ASMessage type='A'/>", "DOCTYPE", 0},
        Refused{"UnknownMarkup", Message("<!ELEMENT a>"), "unknown", 20},
        Refused{"Unclosed", "<ASMessage type='A'>", "<ASMessage> is not closed", 20},
        Refused{"UnclosedTag", "<ASMessage type='A'", "tag is not closed", 0},
        Refused{"UnclosedEndTag", "<ASMessage type='A'></ASMessage", "tag is not closed", 20},
        Refused{"CrossedTags", Message("<F><G></F></G>"), "does not close <G>", 26},
        Refused{"EndTagAlone", "</ASMessage>", "closes no element", 0},
        Refused{"TwoRoots", "<ASMessage type='A'/><b/>", "second root", 21},
        Refused{"TextAfterRoot", "<ASMessage type='A'/>x", "outside", 21},
        Refused{"CDATAAfterRoot", "<ASMessage type='A'/><![CDATA[]]>", "outside", 21},
        Refused{"NameMissing", Message("< F/>"), "name", 21},
        Refused{"LessThanInText", Message("<F>1<2</F>"), "name", 25},
        Refused{"CDATAEndInText", Message("<F>]]></F>"), "]]>", 23},
        Refused{"UnclosedCDATA", Message("<F><![CDATA[x</F>"), "CDATA", 32},
        Refused{"UnclosedComment", Message("<!-- x"), "comment", 24},
        Refused{"HyphensInComment", Message("<!-- a -- b -->"), "comment", 29},
        Refused{"UnclosedInstruction", Message("<?x"), "instruction", 23},
        Refused{"LateDeclaration", "\n<?xml version='1.0'?><ASMessage type='A'/>", "declaration", 6},
        Refused{"OtherEncoding", "<?xml version='1.0' encoding='ISO-8859-1'?><ASMessage type='A'/>", "UTF-8",
                0},
        Refused{"OtherXMLVersion", "<?xml version='1.1'?><ASMessage type='A'/>", "declaration", 0},
        Refused{"DeclarationWithoutVersion", "<?xml encoding='UTF-8'?><ASMessage type='A'/>", "version", 0},
        Refused{"UnclosedDeclaration", "<?xml version='1.0'><ASMessage type='A'/>", "declaration", 19}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Attributes, TextThatIsNoMessage,
    ::testing::Values(Refused{"Doubled", "<ASMessage type='A' type='B'/>", "duplicate attribute", 20},
                      Refused{"Unquoted", "<ASMessage type=A/>", "quoted", 16},
                      Refused{"WithoutValue", "<ASMessage type/>", "no value", 15},
                      Refused{"Unclosed", "<ASMessage type='A/>", "not closed", 17},
                      Refused{"NotApart", "<ASMessage type='A'version='1'/>", "blank", 19},
                      Refused{"LessThanInValue", "<ASMessage type='<'/>", "\"<\"", 17},
                      Refused{"AmpersandInValue", "<ASMessage type='&'/>", "ampersand", 17},
                      Refused{"SixtyFive",
                              "<b" +
                                  [] {
                                      std::string all;
                                      for (int i = 10; i < 75; ++i)
                                          all += " a" + std::to_string(i) + "=''";
                                      return all;
                                  }() +
                                  "/>",
                              "more than 64", 2 + 64 * 7 + 1}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    References, TextThatIsNoMessage,
    ::testing::Values(Refused{"Alone", Message("<F>a & b</F>"), "ampersand", 25},
                      Refused{"Unknown", Message("<F>&nbsp;</F>"), "ampersand", 23},
                      Refused{"Unclosed", Message("<F>&amp</F>"), "ampersand", 23},
                      Refused{"ToNul", Message("<F>&#0;</F>"), "ampersand", 23},
                      Refused{"ToAControlCharacter", Message("<F>&#x1B;</F>"), "ampersand", 23},
                      Refused{"ToASurrogate", Message("<F>&#xD800;</F>"), "ampersand", 23},
                      Refused{"ToNoCharacter", Message("<F>&#xFFFE;</F>"), "ampersand", 23},
                      Refused{"BeyondUnicode", Message("<F>&#x110000;</F>"), "ampersand", 23},
                      Refused{"BeyondThirtyTwoBits", Message("<F>&#4294967361;</F>"), "ampersand", 23},
                      Refused{"Negative", Message("<F>&#-65;</F>"), "ampersand", 23},
                      Refused{"WithoutDigits", Message("<F>&#;&#x;</F>"), "ampersand", 23}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Characters, TextThatIsNoMessage,
    ::testing::Values(Refused{"Nul", Message(std::string("<F>\0</F>", 8)), "U+0000", 23},
                      Refused{"Control", Message("<F>\x01</F>"), "U+0001", 23},
                      Refused{"Surrogate", Message("<F>\xED\xA0\x80</F>"), "U+D800", 23},
                      Refused{"NoCharacter", Message("<F>\xEF\xBF\xBF</F>"), "U+FFFF", 23},
                      Refused{"Latin1", Message("<F>\xE9</F>"), "ill-formed UTF-8", 23},
                      Refused{"Overlong", Message("<F>\xC0\xAF</F>"), "ill-formed UTF-8", 23},
                      Refused{"Utf16", std::string("<\0A\0/\0>\0", 8), "U+0000", 1}),
    NameOf);

TEST(BusText, IsRefusedInTheClientForm) {
    for (const auto* text :
         {"<ASMessage type='A' version='1'/>", "<SessionInfo type='A' version='1'/>", ""}) {
        EXPECT_EQ(ErrorOf([&] { XMLMessage().LoadBusXML(text); }).Number(), XMLMessage::kNotAMessage) << text;
    }
}

TEST(BusText, IsRefusedWithoutAType) {
    EXPECT_EQ(ErrorOf([] { XMLMessage().LoadBusXML("<ASBusMessage schema='s'/>"); }).Number(),
              XMLMessage::kNotAMessage);
}

TEST(Limits, OfBytesHoldExactly) {
    const auto text = Message("<F/>");
    XMLMessage().LoadXML(text, {.bytes = text.size()});
    const auto error = ErrorOf([&] { XMLMessage().LoadXML(text, {.bytes = text.size() - 1}); });
    ExpectNoMessage(error, {"", "", "longer than", text.size() - 1});
}

TEST(Limits, OfDepthHoldExactly) {
    const auto text = Message(Nested(4));
    XMLMessage().LoadXML(text, {.depth = 5});
    ExpectNoMessage(ErrorOf([&] { XMLMessage().LoadXML(text, {.depth = 4}); }),
                    {"", "", "deeper than 4", 29});
}

TEST(Limits, OfElementsHoldExactly) {
    const auto text = Message(Repeated("<F/>", 9));
    XMLMessage().LoadXML(text, {.elements = 10});
    const auto error = ErrorOf([&] { XMLMessage().LoadXML(text, {.elements = 9}); });
    ExpectNoMessage(error, {"", "", "more than 9 elements", 52});
}

TEST(Limits, OfTheBusFormAreTheSame) {
    const auto text = "<ASBusMessage type='A'>" + Nested(32) + "</ASBusMessage>";
    EXPECT_EQ(ErrorOf([&] { XMLMessage().LoadBusXML(text); }).Number(), XMLMessage::kNotAMessage);
    XMLMessage().LoadBusXML(text, {.depth = 33});
}

TEST(Limits, AreThirtyTwoDeepWhenNoneAreGiven) {
    XMLMessage().LoadXML(Message(Nested(31)));
    EXPECT_EQ(ErrorOf([] { XMLMessage().LoadXML(Message(Nested(32))); }).Number(), XMLMessage::kNotAMessage);
}

TEST(Limits, OfDepthEndAt256WhateverIsAsked) {
    XMLMessage().LoadXML(Message(Nested(255)), {.depth = 1'000'000});
    const auto error = ErrorOf([] { XMLMessage().LoadXML(Message(Nested(256)), {.depth = 1'000'000}); });
    EXPECT_NE(error.Description().find("deeper than 256"), std::string::npos);
}

TEST(Limits, StopTenThousandNestedElements) {
    for (const std::size_t depth : {32U, 1'000'000U}) {
        EXPECT_EQ(ErrorOf([&] { XMLMessage().LoadXML(Message(Nested(10'000)), {.depth = depth}); }).Number(),
                  XMLMessage::kNotAMessage);
    }
}

TEST(Limits, StopSixteenMegabytesAndOne) {
    const auto padding = (16U << 20) - Message("<F></F>").size();
    XMLMessage().LoadXML(Message("<F>" + std::string(padding, 'x') + "</F>"));
    EXPECT_EQ(ErrorOf([&] {
                  XMLMessage().LoadXML(Message("<F>" + std::string(padding + 1, 'x') + "</F>"));
              }).Number(),
              XMLMessage::kNotAMessage);
}

TEST(Truncation, OfAMessageIsAlwaysRefused) {
    const std::string text =
        "<?xml version='1.0'?><!--c--><ASMessage type='A' version='1'><F a='&amp;'>&#65;"
        "<![CDATA[x]]><?p q?>\xC3\xA9</F></ASMessage>";
    XMLMessage().LoadXML(text);
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_EQ(ErrorOf([&] { XMLMessage().LoadXML(std::string_view(text).substr(0, length)); }).Number(),
                  XMLMessage::kNotAMessage)
            << length;
    }
}

}  // namespace
}  // namespace kq
