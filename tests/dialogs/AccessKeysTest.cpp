// Access keys: the rule, and every dialog in every language.
#include <cctype>
#include <set>

#include "dialogs/DialogCatalogue.h"
#include "dialogs/DialogsTesting.h"
#include "forms/AccessKeys.h"
#include "platform/posix/StringTables.h"

namespace kq {
namespace {

// The keys as letters, "-" for none.
std::string KeysOf(const std::vector<std::string>& captions) {
    std::string keys;
    const auto places = AssignAccessKeys(captions);
    for (std::size_t i = 0; i < captions.size(); ++i)
        keys += places[i] == kNoAccessKey ? '-' : captions[i][places[i]];
    return keys;
}

TEST(AccessKeys, AreTheFirstLettersWherePossible) {
    EXPECT_EQ(KeysOf({"Address:", "Port:"}), "AP");
}

TEST(AccessKeys, TakeTheBeginningOfAnotherWordNext) {
    EXPECT_EQ(KeysOf({"Password:", "Put New"}), "PN");
}

TEST(AccessKeys, AreNeverTheSameInAnyCase) {
    EXPECT_EQ(KeysOf({"Remove", "rename", "Run"}), "Reu");
}

TEST(AccessKeys, GiveWayWhenAnotherCaptionHasNoChoice) {
    EXPECT_EQ(KeysOf({"ab", "a"}), "ba");
    EXPECT_EQ(KeysOf({"ab", "bc", "a"}), "bca");
}

TEST(AccessKeys, AreMissingOnlyWhereAllLettersAreTaken) {
    EXPECT_EQ(KeysOf({"a", "a", ""}), "a--");
    EXPECT_EQ(KeysOf({"<< >>"}), "-");
}

TEST(AccessKeys, AreLettersAToZAndDigits) {
    EXPECT_EQ(KeysOf({"\u00e9t\u00e9", "2nd"}), "t2");
}

TEST(AccessKeys, AreMarkedForToolkits) {
    EXPECT_EQ(MarkAccessKey("Copy", 1), "C&opy");
    EXPECT_EQ(MarkAccessKey("Save & Exit", kNoAccessKey), "Save && Exit");
    EXPECT_EQ(MarkAccessKey("A_b", 0, '_'), "_A__b");
}

struct LanguageOfDialogs : testing::TestWithParam<std::int32_t> {};

TEST_P(LanguageOfDialogs, HasAUniqueAccessKeyForEveryControl) {
    FakeLocale locale;
    locale.id = GetParam();
    FakePlatform fakes;
    const auto strings = MakePosixStringTable(locale);
    for (const FormRow* row : DialogCatalogue()) {
        const auto form = Form::Load(fakes.platform, *row);
        for (const auto& control : row->controls) {
            if (control.text_id != 0) form->At(control.name).SetText(strings->Load(control.text_id).value());
        }
        std::set<int> used;
        for (const auto& key : AccessKeysOf(*form)) {
            ASSERT_NE(key.place, kNoAccessKey) << key.control->Text();
            EXPECT_TRUE(used.insert(std::tolower(key.control->Text()[key.place])).second)
                << key.control->Text();
        }
    }
}

std::vector<std::int32_t> AllLanguages() {
    std::vector<std::int32_t> languages;
    for (const auto& table : LanguageTables())
        languages.push_back(table.language);
    return languages;
}
INSTANTIATE_TEST_SUITE_P(Every, LanguageOfDialogs, testing::ValuesIn(AllLanguages()),
                         [](const auto& language) { return std::to_string(language.param); });

TEST(AccessKeys, BelongToLabelsOfBoxesCheckBoxesAndPlainButtons) {
    FakePlatform fakes;
    const auto strings = MakePosixStringTable(FakeLocale());
    const FormRow& server = *DialogCatalogue().front();
    const auto form = Form::Load(fakes.platform, server);
    for (const auto& control : server.controls) {
        if (control.text_id != 0) form->At(control.name).SetText(strings->Load(control.text_id).value());
    }
    std::string names;
    for (const auto& key : AccessKeysOf(*form))
        names += std::string(key.control->Name()) + " ";
    EXPECT_EQ(names, "lblAddress lblPort lblTimeOut chkUseASServerforLogin ");
}

}  // namespace
}  // namespace kq
