// What a translation must keep of the English text it stands for, and what the languages hold in common. The
// English texts themselves stand in tests/golden/strings-1033.txt; 406 and 409, which may be reworded, are
// not in it.
#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/posix/StringTables.h"

namespace kq {
namespace {

constexpr std::int32_t kEnglish = 1033;
constexpr std::int32_t kPortuguese = 1046;
constexpr std::int32_t kSpanish[] = {2058, 9226, 10250, 11274, 13322, 14346, 15370};

// First and last id of every run.
constexpr std::pair<std::int32_t, std::int32_t> kRuns[] = {
    {101, 109}, {150, 152}, {200, 209}, {250, 251}, {300, 313},   {400, 426},
    {500, 502}, {550, 559}, {600, 606}, {650, 651}, {700, 712},   {750, 750},
    {800, 805}, {850, 851}, {900, 901}, {950, 950}, {1000, 1021}, {1099, 1099}};

// The captions, labels and buttons of one window stand together.
constexpr std::pair<std::int32_t, std::int32_t> kWindows[] = {
    {101, 109}, {200, 209}, {600, 606}, {700, 708}, {800, 805}};

using Texts = std::map<std::int32_t, std::string>;

Texts TextsOf(std::int32_t language) {
    const auto table = std::ranges::find(LanguageTables(), language, &LanguageTable::language);
    Texts texts;
    if (table == LanguageTables().end()) return texts;
    for (const auto& entry : table->entries)
        texts.emplace(entry.id, entry.text);
    return texts;
}

std::size_t CountOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::multiset<std::string> PlaceholdersOf(const std::string& text) {
    std::multiset<std::string> found;
    for (int i = 0; i < 10; ++i) {
        const std::string placeholder = "%" + std::to_string(i) + "%";
        for (auto left = CountOf(text, placeholder); left > 0; --left)
            found.insert(placeholder);
    }
    return found;
}

// How a text ends: "...", its last punctuation mark, or nothing after a letter or digit.
std::string EndOf(const std::string& text) {
    if (text.ends_with("...")) return "...";
    if (text.empty() || !std::ispunct(static_cast<unsigned char>(text.back()))) return "";
    return text.substr(text.size() - 1);
}

// Blanks before and after the text.
std::pair<std::size_t, std::size_t> MarginsOf(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == text.npos) return {text.size(), 0};
    return {first, text.size() - text.find_last_not_of(' ') - 1};
}

// Asks `look` for the same answer on every translation as on its English text.
template <class Look>
void ExpectLikeEnglish(Look look) {
    const Texts english = TextsOf(kEnglish);
    for (const auto& table : LanguageTables()) {
        for (const auto& entry : table.entries)
            EXPECT_EQ(look(std::string(entry.text)), look(english.at(entry.id)))
                << table.language << ", " << entry.id << ": " << entry.text;
    }
}

TEST(StringTables, AreInNineLanguages) {
    std::vector<std::int32_t> languages;
    for (const auto& table : LanguageTables())
        languages.push_back(table.language);
    EXPECT_EQ(std::set<std::int32_t>(languages.begin(), languages.end()),
              (std::set<std::int32_t>{1033, 1046, 2058, 9226, 10250, 11274, 13322, 14346, 15370}));
    EXPECT_EQ(languages.size(), 9U);
}

TEST(StringTables, HaveTheSame135IdsInEveryLanguage) {
    std::vector<std::int32_t> expected;
    for (const auto& [first, last] : kRuns) {
        for (std::int32_t id = first; id <= last; ++id)
            expected.push_back(id);
    }
    ASSERT_EQ(expected.size(), 135U);
    for (const auto& table : LanguageTables()) {
        std::vector<std::int32_t> ids;
        std::ranges::transform(table.entries, std::back_inserter(ids), &StringEntry::id);
        EXPECT_EQ(ids, expected) << table.language;
    }
}

TEST(StringTables, AreTheFixedTextsInEnglish) {
    const Texts english = TextsOf(kEnglish);
    std::ifstream golden(KQ_SOURCE_DIR "/tests/golden/strings-1033.txt");
    std::size_t count = 0;
    for (std::string line; std::getline(golden, line); ++count) {
        const auto comma = line.find(", ");
        ASSERT_NE(comma, line.npos) << line;
        EXPECT_EQ(english.at(std::stoi(line)), line.substr(comma + 2));
    }
    EXPECT_EQ(count, 133U);
}

TEST(StringTables, HaveNoEmptyText) {
    for (const auto& table : LanguageTables()) {
        for (const auto& entry : table.entries)
            EXPECT_FALSE(entry.text.empty()) << table.language << ", " << entry.id;
    }
}

TEST(StringTables, KeepEveryPlaceholderAsOftenAsInEnglish) {
    ExpectLikeEnglish(PlaceholdersOf);
}

TEST(StringTables, KeepTheDoubleBlanks) {
    ExpectLikeEnglish([](const std::string& text) { return CountOf(text, "  "); });
}

TEST(StringTables, KeepTheBlanksAtTheEnds) {
    ExpectLikeEnglish(MarginsOf);
}

TEST(StringTables, EndInTheSamePunctuation) {
    ExpectLikeEnglish(EndOf);
}

TEST(StringTables, AskAsManyQuestions) {
    ExpectLikeEnglish([](const std::string& text) { return CountOf(text, "?"); });
}

TEST(StringTables, KeepTheQuotationMarks) {
    ExpectLikeEnglish([](const std::string& text) { return CountOf(text, "\""); });
    ExpectLikeEnglish([](const std::string& text) { return CountOf(text, "'"); });
}

TEST(StringTables, KeepTheMismatchedMarksAroundTheProfileToRemove) {
    ExpectLikeEnglish([](const std::string& text) { return CountOf(text, "'%0%\""); });
    EXPECT_EQ(CountOf(TextsOf(kEnglish).at(712), "'%0%\""), 1U);
}

TEST(StringTables, KeepNamesOfMethods) {
    ExpectLikeEnglish([](const std::string& text) { return CountOf(text, "SetSystemLoginState"); });
}

TEST(StringTables, HaveNoAccessKeys) {
    for (const auto& table : LanguageTables()) {
        for (const auto& entry : table.entries)
            EXPECT_EQ(CountOf(entry.text, "&"), 0U) << table.language << ", " << entry.id;
    }
}

TEST(StringTables, OpenEveryQuestionInSpanish) {
    for (const std::int32_t language : kSpanish) {
        for (const auto& [id, text] : TextsOf(language))
            EXPECT_EQ(CountOf(text, "¿"), CountOf(text, "?")) << language << ", " << id;
    }
}

TEST(StringTables, AreTranslatedButForTheButtonThatNeedsNoTranslation) {
    const Texts english = TextsOf(kEnglish);
    for (const auto& table : LanguageTables()) {
        if (table.language == kEnglish) continue;
        for (const auto& entry : table.entries)
            EXPECT_TRUE(entry.text != english.at(entry.id) || entry.text == "OK")
                << table.language << ", " << entry.id << ": " << entry.text;
    }
}

// "Cancel" is one word in all dialogs, a silent error reads like its question.
TEST(StringTables, SayTheSameWhereTheEnglishDoes) {
    const Texts english = TextsOf(kEnglish);
    for (const auto& table : LanguageTables()) {
        std::map<std::string, std::string> chosen;
        for (const auto& entry : table.entries) {
            const auto& [source, first] = *chosen.emplace(english.at(entry.id), entry.text).first;
            EXPECT_EQ(entry.text, first) << table.language << ", " << entry.id << ": " << source;
        }
    }
}

TEST(StringTables, TellTheControlsOfAWindowApart) {
    const Texts english = TextsOf(kEnglish);
    for (const auto& table : LanguageTables()) {
        const Texts texts = TextsOf(table.language);
        for (const auto& [first, last] : kWindows) {
            std::map<std::string, std::string> source;
            for (std::int32_t id = first; id <= last; ++id) {
                const auto& [text, meant] = *source.emplace(texts.at(id), english.at(id)).first;
                EXPECT_EQ(meant, english.at(id)) << table.language << ", " << id << ": " << text;
            }
        }
    }
}

TEST(StringTables, CallTheButtonNewByItsOwnCaption) {
    for (const auto& table : LanguageTables()) {
        const Texts texts = TextsOf(table.language);
        EXPECT_EQ(CountOf(texts.at(423), "\"" + texts.at(703) + "\""), 1U) << table.language;
    }
}

// The texts say "click in Yes", with the word for "in".
void ExpectButtons(std::int32_t language, const std::string& yes, const std::string& no,
                   const std::string& cancel) {
    const Texts texts = TextsOf(language);
    for (const std::int32_t id : {402, 404, 424}) {
        EXPECT_EQ(CountOf(texts.at(id), yes), 1U) << language << ", " << id;
        EXPECT_EQ(CountOf(texts.at(id), no), 1U) << language << ", " << id;
        // The box of 424 has no third button.
        EXPECT_EQ(CountOf(texts.at(id), cancel), id == 424 ? 0U : 1U) << language << ", " << id;
    }
}

TEST(StringTables, CallTheButtonsOfTheBoxesAsTheSystemDoes) {
    ExpectButtons(kPortuguese, " em Sim ", " em Não ", " em Cancelar ");
    for (const std::int32_t language : kSpanish)
        ExpectButtons(language, " en Sí ", " en No ", " en Cancelar ");
}

}  // namespace
}  // namespace kq
