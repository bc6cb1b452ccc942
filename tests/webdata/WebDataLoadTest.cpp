// Texts that the four loaders of web data refuse, and that a refusal changes nothing.
#include <kqappsession/WebData.h>

#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ErrorOf;
using testing::Nested;
using testing::Repeated;

constexpr std::string_view kTranslationTable =
    "<TranslationTable language='en'><Text key='a'>b</Text></TranslationTable>";
constexpr std::string_view kDataTable =
    "<DataTable name='t' columns='a'><Row><Value column='a'>1</Value></Row></DataTable>";
constexpr std::string_view kProfile = "<Profile name='Day'/>";
constexpr std::string_view kProfiles = "<Profiles lastUsed='Day'><Profile name='Day'/></Profiles>";
constexpr std::string_view kMessage = "<ASMessage type='A' version='1'/>";
constexpr std::string_view kNestedMessage = "<SessionInfo type='A' version='1'/>";
constexpr std::string_view kRoots[] = {kTranslationTable, kDataTable, kProfile, kProfiles};

// Loads `text` into a filled object, expects a refusal and that the object is as it was.
template <class Object>
void ExpectRefused(std::string_view filled, std::string_view text, std::string_view reason = {}) {
    Object object;
    object.LoadXML(filled);
    const auto before = object.ToXML();
    const auto error = ErrorOf([&] { object.LoadXML(text); });
    EXPECT_EQ(error.Number(), kNotWebData) << text;
    EXPECT_EQ(error.Source(), "KQWebDataLib");
    EXPECT_NE(error.Description().find(reason), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find("(byte "), std::string::npos) << error.Description();
    EXPECT_EQ(object.ToXML(), before);
}

template <class Object>
void ExpectOwnRootOnly(std::string_view own) {
    for (const auto other : kRoots) {
        if (other != own) ExpectRefused<Object>(own, other, "root element");
    }
    for (const auto other : {kMessage, kNestedMessage})
        ExpectRefused<Object>(own, other, "root element");
    for (const auto* other : {"", " \n", "text", "<html/>", "<a"})
        ExpectRefused<Object>(own, other);
}

TEST(Loading, OfATranslationTableTakesNoOtherRoot) {
    ExpectOwnRootOnly<TranslationTable>(kTranslationTable);
}

TEST(Loading, OfADataTableTakesNoOtherRoot) {
    ExpectOwnRootOnly<DataTable>(kDataTable);
}

TEST(Loading, OfAProfileTakesNoOtherRoot) {
    ExpectOwnRootOnly<Profile>(kProfile);
}

TEST(Loading, OfProfilesTakesNoOtherRoot) {
    ExpectOwnRootOnly<Profiles>(kProfiles);
}

TEST(Loading, OfAMessageTakesNoWebData) {
    for (const auto root : kRoots) {
        EXPECT_EQ(ErrorOf([&] { XMLMessage().LoadXML(root); }).Number(), XMLMessage::kNotAMessage) << root;
    }
}

void RefusedTranslations(std::string_view inner, std::string_view reason) {
    const auto text = "<TranslationTable language='de'>" + std::string(inner) + "</TranslationTable>";
    ExpectRefused<TranslationTable>(kTranslationTable, text, reason);
}

TEST(Loading, OfATranslationTableRefusesWhatItDoesNotKnow) {
    RefusedTranslations("<Text key='a'/><Text key='a'/>", "duplicate key");
    RefusedTranslations("<Text>b</Text>", "no attribute key");
    RefusedTranslations("<Text key='a'><b/></Text>", "<Text> holds an element");
    RefusedTranslations("<Word key='a'/>", "<Word> is unknown");
    RefusedTranslations("<Text key='a'/>b", "holds a text");
    RefusedTranslations("<!DOCTYPE a>", "DOCTYPE");
    RefusedTranslations("<Text key='a'>&#1;</Text>", "ampersand");
    RefusedTranslations(std::string_view("\0", 1), "U+0000");
}

void RefusedTable(std::string_view head, std::string_view inner, std::string_view reason) {
    const auto text = "<DataTable " + std::string(head) + ">" + std::string(inner) + "</DataTable>";
    ExpectRefused<DataTable>(kDataTable, text, reason);
}

TEST(Loading, OfADataTableRefusesBadColumns) {
    RefusedTable("columns='a'", "", "no attribute name");
    RefusedTable("name='t'", "", "no attribute columns");
    RefusedTable("name='t' columns='a,a'", "", "columns");
    RefusedTable("name='t' columns='a,,b'", "", "columns");
    RefusedTable("name='t' columns='c" + Repeated("c,c", 1025) + "'", "", "columns");
}

TEST(Loading, OfADataTableRefusesBadRows) {
    constexpr std::string_view head = "name='t' columns='a,b'";
    RefusedTable(head, "<Value column='a'/>", "<Value> is unknown");
    RefusedTable(head, "<Row>x</Row>", "<Row> holds a text");
    RefusedTable(head, "<Row><Value>1</Value></Row>", "no attribute column");
    RefusedTable(head, "<Row><Value column='c'>1</Value></Row>", "its table does not have");
    RefusedTable(head, "<Row><Value column='a'/><Value column='a'/></Row>", "column twice");
    RefusedTable(head, "<Row><Value column='a'><b/></Value></Row>", "<Value> holds an element");
}

void RefusedProfiles(std::string_view inner, std::string_view reason) {
    ExpectRefused<Profiles>(kProfiles, "<Profiles>" + std::string(inner) + "</Profiles>", reason);
}

TEST(Loading, OfProfilesRefusesWhatItDoesNotKnow) {
    RefusedProfiles("<Profile name='a'/><Profile name='b'/><Profile name='a'/>", "duplicate profile name");
    RefusedProfiles("<Profile/>", "no attribute name");
    RefusedProfiles("<DataTable name='t' columns=''/>", "<DataTable> is unknown");
    RefusedProfiles("text", "holds a text");
    RefusedProfiles("<Profile name='a'><Row/></Profile>", "<Row> is unknown");
    const std::string table = "<DataTable name='t' columns=''/>";
    RefusedProfiles("<Profile name='a'>" + table + table + "</Profile>", "duplicate table name");
}

TEST(Loading, IgnoresAttributesAndBlanksAndComments) {
    Profiles profiles;
    profiles.LoadXML(
        "<?xml version='1.0'?>\n<Profiles x='1'>\n <!-- a --> <Profile name='Day' "
        "y='2'>\n</Profile>\n</Profiles>");
    EXPECT_EQ(profiles.ToXML(), R"(<Profiles lastUsed=""><Profile name="Day"/></Profiles>)");
}

TEST(Loading, OfWebDataStopsTenThousandNestedElements) {
    ExpectRefused<Profiles>(kProfiles, "<Profiles>" + Nested(10'000) + "</Profiles>", "deeper than 32");
}

TEST(Loading, OfWebDataStopsAMillionElementsAndOne) {
    const auto texts = Repeated("<Row/>", 1'000'000);
    ExpectRefused<DataTable>(kDataTable, "<DataTable name='t' columns=''>" + texts + "</DataTable>",
                             "more than 1000000 elements");
}

TEST(Loading, OfWebDataStopsSixteenMegabytesAndOne) {
    ExpectRefused<TranslationTable>(kTranslationTable, std::string((16U << 20) + 1, ' '), "longer than");
}

TEST(Loading, OfManyProfilesTakesNoQuadraticSearch) {
    std::string text = "<Profiles>";
    for (int i = 0; i < 50'000; ++i)
        text += "<Profile name='" + std::to_string(i) + "'/>";
    Profiles profiles;
    profiles.LoadXML(text + "</Profiles>");
    EXPECT_EQ(profiles.Count(), 50'000);
}

}  // namespace
}  // namespace kq
