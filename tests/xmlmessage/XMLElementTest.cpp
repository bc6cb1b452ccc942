// The element tree: names, texts, attributes, paths.
#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ErrorOf;
using testing::ExpectInvalidCall;

XMLElement Announcement() {
    XMLElement root("ASBroadcastInfo");
    root.Add("ApplicationInfos");
    auto& info = root.Add("ApplicationInfos").Add("ApplicationInfo");
    info.Add("AppID", "VL2");
    info.Add("InterfaceVersions", "1.0");
    info.Add("InterfaceVersions", "2.0");
    return root;
}

class NameThatIsRefused : public ::testing::TestWithParam<std::string> {};

TEST_P(NameThatIsRefused, RaisesAnInvalidCall) {
    ExpectInvalidCall([] { XMLElement element(GetParam()); });
    ExpectInvalidCall([] { XMLElement("a").SetAttribute(GetParam(), "1"); });
    ExpectInvalidCall([] { XMLElement("a").Add(GetParam()); });
}

INSTANTIATE_TEST_SUITE_P(XMLElement, NameThatIsRefused,
                         ::testing::Values("", "1a", "-a", ".a", "a b", "a:b", "xml", "XMLData", "xMl",
                                           "\xC3\xA9", "a<", "a\"", std::string("a\0", 2), "a\xFF", "a\n"));

TEST(XMLElement, TakesNamesOfAsciiLettersDigitsAndMarks) {
    for (const auto* name : {"A", "_", "a1", "ASLoginRequest", "a-b.c_d", "x", "xm", "_xml"}) {
        EXPECT_EQ(XMLElement(name).Name(), name);
    }
}

class TextThatIsRefused : public ::testing::TestWithParam<std::pair<std::string, std::string>> {};

TEST_P(TextThatIsRefused, IsToldWithTheElementAndTheCodePoint) {
    const auto error = ErrorOf([] { XMLElement("Password", "ab" + GetParam().first + "cd"); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::InvalidProcedureCall));
    EXPECT_NE(error.Description().find("Password"), std::string::npos);
    EXPECT_NE(error.Description().find(GetParam().second), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find("byte 2"), std::string::npos) << error.Description();
    EXPECT_EQ(error.Description().find("cd"), std::string::npos) << "the text itself must not be shown";
}

INSTANTIATE_TEST_SUITE_P(
    XMLElement, TextThatIsRefused,
    ::testing::Values(std::pair{std::string(1, '\0'), "U+0000"}, std::pair{"\x01", "U+0001"},
                      std::pair{"\x1F", "U+001F"}, std::pair{"\xED\xA0\x80", "U+D800"},
                      std::pair{"\xED\xBF\xBF", "U+DFFF"}, std::pair{"\xEF\xBF\xBE", "U+FFFE"},
                      std::pair{"\xEF\xBF\xBF", "U+FFFF"}, std::pair{"\xC0\x80", "ill-formed"},
                      std::pair{"\xFF", "ill-formed"}, std::pair{"\xF4\x90\x80\x80", "ill-formed"},
                      std::pair{"\xE2\x82", "ill-formed"}));

TEST(XMLElement, TellsAnIllFormedEndOfTheText) {
    EXPECT_NE(ErrorOf([] { XMLElement("a", "xy\xF0\x9F"); }).Description().find("byte 2"), std::string::npos);
}

TEST(XMLElement, KeepsItsTextWhenTheNewOneIsRefused) {
    XMLElement element("a", "old");
    ExpectInvalidCall([&] { element.SetText("\x02"); });
    EXPECT_EQ(element.Text(), "old");
}

TEST(XMLElement, DropsItsTextWhenAChildIsAdded) {
    XMLElement element("a", "text");
    element.Add("b", "1");
    EXPECT_EQ(element.Text(), "");
}

TEST(XMLElement, DropsItsChildrenWhenATextIsSet) {
    XMLElement element("a");
    element.Add("b", "1");
    element.SetText("text");
    EXPECT_TRUE(element.Children().empty());
    EXPECT_EQ(element.Text(), "text");
}

TEST(XMLElement, TakesTheTextOfItsOwnChild) {
    XMLElement element("a");
    const auto& child = element.Add("b", "a text that is too long to be kept in place");
    element.SetText(child.Text());
    EXPECT_EQ(element.Text(), "a text that is too long to be kept in place");
}

TEST(XMLElement, RefusesAChildWithoutAName) {
    ExpectInvalidCall([] { XMLElement("a").Add(XMLElement()); });
}

TEST(XMLElement, ReplacesAnAttributeInItsPlace) {
    XMLElement element("a");
    element.SetAttribute("x", "1");
    element.SetAttribute("y", "2");
    element.SetAttribute("x", "3");
    const std::vector<XMLAttribute> expected = {{"x", "3"}, {"y", "2"}};
    EXPECT_EQ(element.Attributes(), expected);
}

TEST(XMLElement, ReadsAnAbsentAttributeAsEmpty) {
    EXPECT_EQ(XMLElement("a").Attribute("x"), "");
}

TEST(XMLElement, HasSixtyFourAttributesAtMost) {
    XMLElement element("a");
    for (int i = 0; i < 64; ++i)
        element.SetAttribute("x" + std::to_string(i), "");
    ExpectInvalidCall([&] { element.SetAttribute("x64", ""); });
    EXPECT_EQ(element.Attributes().size(), 64U);
}

TEST(XMLElement, FindsTheFirstElementAtAPath) {
    EXPECT_EQ(Announcement().TextOf("ApplicationInfos/ApplicationInfo/InterfaceVersions"), "1.0");
}

TEST(XMLElement, LooksBelowLaterElementsOfTheSameNameToo) {
    EXPECT_EQ(Announcement().TextOf("ApplicationInfos/ApplicationInfo/AppID"), "VL2");
}

TEST(XMLElement, FindsNothingAtAPathThatDoesNotExist) {
    auto root = Announcement();
    for (const auto* path :
         {"", "/", "/ApplicationInfos", "ApplicationInfos/", "ApplicationInfos//ApplicationInfo",
          "ASBroadcastInfo", "applicationinfos", "ApplicationInfos/AppID"}) {
        EXPECT_EQ(root.Find(path), nullptr) << path;
        EXPECT_EQ(root.TextOf(path), "") << path;
    }
}

TEST(XMLElement, GivesAFoundElementForChanging) {
    auto root = Announcement();
    root.Find("ApplicationInfos/ApplicationInfo")->Add("InfoState", "C");
    EXPECT_EQ(root.TextOf("ApplicationInfos/ApplicationInfo/InfoState"), "C");
}

TEST(XMLElement, RemovesEveryChildOfAName) {
    auto root = Announcement();
    auto* info = root.Find("ApplicationInfos/ApplicationInfo");
    EXPECT_EQ(info->Remove("InterfaceVersions"), 2U);
    EXPECT_EQ(info->Remove("InterfaceVersions"), 0U);
    EXPECT_EQ(info->Children().size(), 1U);
}

TEST(XMLElement, RemovesByTheNameOfAChildItself) {
    auto root = Announcement();
    EXPECT_EQ(root.Remove(root.Children()[0].Name()), 2U);
}

TEST(XMLElement, IsEqualOnlyWithTheSameNameTextAttributesAndChildren) {
    auto changed = Announcement();
    EXPECT_EQ(changed, Announcement());
    changed.Find("ApplicationInfos/ApplicationInfo/AppID")->SetAttribute("x", "");
    EXPECT_NE(changed, Announcement());
    EXPECT_NE(XMLElement("a", "1"), XMLElement("a", "2"));
    EXPECT_NE(XMLElement("a"), XMLElement("A"));
}

}  // namespace
}  // namespace kq
