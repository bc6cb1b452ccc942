// The translation table.
#include <kqappsession/WebData.h>

#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ExpectInvalidCall;
using testing::RandomTexts;

TranslationTable German() {
    TranslationTable table;
    table.SetLanguage("de");
    table.Set("Yes", "Ja");
    table.Set("No", "Nein");
    return table;
}

TranslationTable Loaded(const std::string& xml) {
    TranslationTable table;
    table.LoadXML(xml);
    return table;
}

TEST(TranslationTable, TranslatesAKey) {
    EXPECT_EQ(German().Translate("Yes"), "Ja");
}

TEST(TranslationTable, GivesTheKeyItselfWhenItHasNoText) {
    EXPECT_EQ(German().Translate("yes"), "yes");
    EXPECT_EQ(German().Translate(""), "");
}

TEST(TranslationTable, TranslatesToAnEmptyTextThatWasSet) {
    auto table = German();
    table.Set("Yes", "");
    EXPECT_EQ(Loaded(table.ToXML()).Translate("Yes"), "");
}

TEST(TranslationTable, ReplacesATextThatIsSetAgain) {
    auto table = German();
    table.Set("Yes", "Jawohl");
    EXPECT_EQ(table.Translate("Yes"), "Jawohl");
    EXPECT_EQ(table.Count(), 2);
}

TEST(TranslationTable, RemovesAKeyAndIgnoresOneThatIsNotThere) {
    auto table = German();
    table.Remove("Yes");
    table.Remove("Maybe");
    EXPECT_FALSE(table.Exists("Yes"));
    EXPECT_EQ(table.Keys(), std::vector<std::string>{"No"});
}

TEST(TranslationTable, IsWrittenInTheOrderOfItsKeys) {
    EXPECT_EQ(
        German().ToXML(),
        R"(<TranslationTable language="de"><Text key="No">Nein</Text><Text key="Yes">Ja</Text></TranslationTable>)");
}

TEST(TranslationTable, ComesBackFromItsText) {
    const auto table = Loaded(German().ToXML());
    EXPECT_EQ(table.Language(), "de");
    EXPECT_EQ(table.ToXML(), German().ToXML());
}

TEST(TranslationTable, IsEmptyByDefault) {
    EXPECT_EQ(TranslationTable().ToXML(), R"(<TranslationTable language=""/>)");
    EXPECT_EQ(Loaded(TranslationTable().ToXML()).Count(), 0);
}

TEST(TranslationTable, ForgetsWhatItHeldWhenItIsLoaded) {
    auto table = German();
    table.LoadXML("<TranslationTable><Text key='a'>b</Text></TranslationTable>");
    EXPECT_EQ(table.Language(), "");
    EXPECT_EQ(table.Keys(), std::vector<std::string>{"a"});
}

TEST(TranslationTable, RefusesTextsThatXMLCannotCarry) {
    auto table = German();
    ExpectInvalidCall([&] { table.Set("\x01", "a"); });
    ExpectInvalidCall([&] { table.Set("a", "\x01"); });
    ExpectInvalidCall([&] { table.SetLanguage("\xFF"); });
    EXPECT_EQ(table.ToXML(), German().ToXML());
}

TEST(TranslationTable, KeepsRandomTexts) {
    RandomTexts random;
    for (int round = 0; round < 100; ++round) {
        TranslationTable table;
        table.SetLanguage(random.Next());
        for (auto texts = random.Below(5); texts > 0; --texts)
            table.Set(random.Next(), random.Next());
        const auto loaded = Loaded(table.ToXML());
        EXPECT_EQ(loaded.Language(), table.Language());
        ASSERT_EQ(loaded.Keys(), table.Keys());
        for (const auto& key : table.Keys())
            EXPECT_EQ(loaded.Translate(key), table.Translate(key));
    }
}

}  // namespace
}  // namespace kq
