// Whatever a message can hold comes back from its text exactly.
#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::RandomTexts;

XMLMessage ThroughTheClientForm(const XMLMessage& message) {
    XMLMessage loaded;
    loaded.LoadXML(message.ToXML());
    return loaded;
}

XMLMessage ThroughTheBusForm(const XMLMessage& message) {
    XMLMessage loaded;
    loaded.LoadBusXML(message.ToBusXML());
    return loaded;
}

class Text : public ::testing::TestWithParam<std::string> {};

TEST_P(Text, OfAFieldComesBack) {
    XMLMessage message("A", "1");
    message.SetField("Password", GetParam());
    EXPECT_EQ(ThroughTheClientForm(message).Field("Password"), GetParam());
    EXPECT_EQ(ThroughTheBusForm(message), message);
}

TEST_P(Text, OfTheHeaderComesBack) {
    XMLMessage message("A", GetParam());
    EXPECT_EQ(ThroughTheClientForm(message).Version(), GetParam());
    message.SetSchema(GetParam());
    message.SetDestination({GetParam(), GetParam()});
    EXPECT_EQ(ThroughTheBusForm(message), message);
}

TEST_P(Text, OfANestedElementAndItsAttributeComesBack) {
    XMLMessage message("A", "1");
    XMLElement element("Nested");
    element.SetAttribute("name", GetParam());
    element.Add("Item", GetParam());
    message.SetField(element);
    EXPECT_EQ(ThroughTheClientForm(message), message);
}

INSTANTIATE_TEST_SUITE_P(RoundTrip, Text,
                         ::testing::Values("", " ", "  \t ", "\r", "\n", "\r\n", "\r\r\n\n", " a ", "\ta\t",
                                           "&<>\"'", "]]>", "<![CDATA[x]]>", "<!-- x -->", "&amp;", "&#65;",
                                           "\x7F", "\xC2\x85", "\xC3\xA9", "\xE2\x80\xA8", "\xE2\x82\xAC",
                                           "\xEF\xBB\xBF", "\xEF\xBF\xBD", "\xED\x9F\xBF", "\xEE\x80\x80",
                                           "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"));

std::string Utf8(char32_t c) {
    const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
    if (c < 0x10000) return {byte(0xE0 | c >> 12), byte(0x80 | (c >> 6 & 0x3F)), byte(0x80 | (c & 0x3F))};
    return {byte(0xF0 | c >> 18), byte(0x80 | (c >> 12 & 0x3F)), byte(0x80 | (c >> 6 & 0x3F)),
            byte(0x80 | (c & 0x3F))};
}

TEST(RoundTrip, KeepsCharactersOfEveryPlane) {
    XMLMessage message("A", "1");
    std::string all;
    for (char32_t plane = 0; plane <= 16; ++plane)
        all += Utf8(plane * 0x10000 + 0xF000) + Utf8(plane * 0x10000 + 0xABC);
    message.SetField("F", all);
    EXPECT_EQ(ThroughTheClientForm(message).Field("F"), all);
}

TEST(RoundTrip, KeepsRandomTrees) {
    RandomTexts random;
    for (int round = 0; round < 300; ++round) {
        XMLMessage message("A", random.Next());
        for (auto fields = random.Below(6); fields > 0; --fields) {
            auto& field = message.Root().Add("F" + std::to_string(random.Below(3)), random.Next());
            if (random.Below(2) == 0) field.SetAttribute("a", random.Next());
            if (random.Below(2) == 0) field.Add("Child", random.Next()).SetAttribute("b", random.Next());
        }
        EXPECT_EQ(ThroughTheClientForm(message), message) << round;
        EXPECT_EQ(ThroughTheBusForm(message), message) << round;
    }
}

TEST(RoundTrip, OfAMessageWithRandomlyChangedBytesNeverCrashes) {
    RandomTexts random;
    const std::string text =
        "<ASMessage type='A' version='1'><F a='&amp;'>&#65;<![CDATA[x]]></F><!--c--></ASMessage>";
    int accepted = 0;
    for (int round = 0; round < 5'000; ++round) {
        auto changed = text;
        for (auto changes = 1 + random.Below(3); changes > 0; --changes) {
            changed[random.Below(changed.size())] = "<>&;'\"/!?-[]= \x01x#\xC3"[random.Below(18)];
        }
        XMLMessage message;
        try {
            message.LoadXML(changed);
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), XMLMessage::kNotAMessage);
            continue;
        }
        ++accepted;
        EXPECT_EQ(ThroughTheClientForm(message), message) << changed;
    }
    EXPECT_GT(accepted, 0);
}

}  // namespace
}  // namespace kq
