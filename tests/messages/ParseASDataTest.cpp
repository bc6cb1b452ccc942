// What a received text is taken for.
#include <gtest/gtest.h>

#include "messages/ParseASData.h"

namespace kq {
namespace {

static_assert(static_cast<int>(ASDataKind::TranslationTable) == 0 &&
              static_cast<int>(ASDataKind::DataTable) == 1 && static_cast<int>(ASDataKind::Profiles) == 2 &&
              static_cast<int>(ASDataKind::XMLMessage) == 3 && static_cast<int>(ASDataKind::None) == 4);

template <class T>
std::shared_ptr<T> As(const ASData& data) {
    return std::get<std::shared_ptr<T>>(data.object);
}

TEST(ParseASData, KnowsAMessage) {
    XMLMessage sent("ASLoginResponse", "1");
    sent.SetField("ErrorNumber", "0");
    const ASData data = ParseASData(sent.ToXML());
    EXPECT_EQ(data.kind, ASDataKind::XMLMessage);
    EXPECT_EQ(*data.Message(), sent);
}

TEST(ParseASData, KnowsAProfileCollection) {
    Profiles sent;
    sent.Add(std::make_shared<Profile>("Main"));
    const ASData data = ParseASData(sent.ToXML());
    EXPECT_EQ(data.kind, ASDataKind::Profiles);
    EXPECT_TRUE(As<Profiles>(data)->Exists("Main"));
}

TEST(ParseASData, KnowsADataTable) {
    const DataTable sent("kqasForms", "FormName,Flags");
    const ASData data = ParseASData(sent.ToXML());
    EXPECT_EQ(data.kind, ASDataKind::DataTable);
    EXPECT_EQ(As<DataTable>(data)->Name(), "kqasForms");
}

TEST(ParseASData, KnowsATranslationTable) {
    TranslationTable sent;
    sent.Set("greeting", "Hola");
    const ASData data = ParseASData(sent.ToXML());
    EXPECT_EQ(data.kind, ASDataKind::TranslationTable);
    EXPECT_EQ(As<TranslationTable>(data)->Translate("greeting"), "Hola");
}

TEST(ParseASData, KnowsEveryKindWhenItIsEmpty) {
    EXPECT_EQ(ParseASData(XMLMessage("T", "1").ToXML()).kind, ASDataKind::XMLMessage);
    EXPECT_EQ(ParseASData(Profiles().ToXML()).kind, ASDataKind::Profiles);
    EXPECT_EQ(ParseASData(DataTable().ToXML()).kind, ASDataKind::DataTable);
    EXPECT_EQ(ParseASData(TranslationTable().ToXML()).kind, ASDataKind::TranslationTable);
}

TEST(ParseASData, TakesForAMessageWhatLaterKindsCouldBeToo) {
    const std::string both = R"(<Profiles type="ASLoginResponse" version="1"/>)";
    EXPECT_EQ(ParseASData(both).kind, ASDataKind::XMLMessage);
}

TEST(ParseASData, FindsNothingInAnyOtherText) {
    for (const char* text : {"", " ", "hello", "<a>", "<a/>", "<Unknown>1</Unknown>"}) {
        const ASData data = ParseASData(text);
        EXPECT_EQ(data.kind, ASDataKind::None) << text;
        EXPECT_TRUE(std::holds_alternative<std::monostate>(data.object));
    }
}

TEST(ParseASData, HasNoMessageInDataOfAnotherKind) {
    EXPECT_EQ(ParseASData(Profiles().ToXML()).Message(), nullptr);
    EXPECT_EQ(ParseASData("").Message(), nullptr);
}

}  // namespace
}  // namespace kq
