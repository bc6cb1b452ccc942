// The compiled-in texts: which ids there are, which language is served, what a translation must keep.
#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"
#include "platform/posix/StringTables.h"

namespace kq {
namespace {

// First and last id of every run.
constexpr std::pair<std::int32_t, std::int32_t> kRuns[] = {
    {101, 109}, {150, 152}, {200, 209}, {250, 251}, {300, 313},   {400, 426},
    {500, 502}, {550, 559}, {600, 606}, {650, 651}, {700, 712},   {750, 750},
    {800, 805}, {850, 851}, {900, 901}, {950, 950}, {1000, 1021}, {1099, 1099}};

std::vector<std::int32_t> AllIds() {
    std::vector<std::int32_t> ids;
    for (const auto& [first, last] : kRuns) {
        for (std::int32_t id = first; id <= last; ++id)
            ids.push_back(id);
    }
    return ids;
}

const LanguageTable& Table(std::int32_t language) {
    return *std::ranges::find(LanguageTables(), language, &LanguageTable::language);
}

std::multiset<std::string> PlaceholdersOf(std::string_view text) {
    std::multiset<std::string> found;
    for (int i = 0; i < 10; ++i) {
        const std::string placeholder = "%" + std::to_string(i) + "%";
        for (auto at = text.find(placeholder); at != text.npos; at = text.find(placeholder, at + 1))
            found.insert(placeholder);
    }
    return found;
}

TEST(Strings, HaveTheSame135IdsInEveryLanguage) {
    ASSERT_EQ(AllIds().size(), 135U);
    for (const auto& table : LanguageTables()) {
        std::vector<std::int32_t> ids;
        for (const auto& entry : table.entries)
            ids.push_back(entry.id);
        EXPECT_EQ(ids, AllIds()) << table.language;
    }
}

TEST(Strings, HaveTheSamePlaceholdersInEveryLanguage) {
    const auto english = Table(1033).entries;
    for (const auto& table : LanguageTables()) {
        ASSERT_EQ(table.entries.size(), english.size()) << table.language;
        for (std::size_t i = 0; i < english.size(); ++i)
            EXPECT_EQ(PlaceholdersOf(table.entries[i].text), PlaceholdersOf(english[i].text))
                << table.language << ": " << table.entries[i].text;
    }
}

TEST(Strings, KeepTheBlanksAndQuotationMarksOfTheirSource) {
    FakeLocale user;
    const auto strings = MakePosixStringTable(user);
    EXPECT_EQ(strings->Load(151), "The port entered is not valid.  Please enter again.");
    EXPECT_EQ(strings->Load(309), "Attempting to retrieve profile \"%0%\".  Please wait.");
    EXPECT_EQ(strings->Load(712), "Are you sure you wish to remove the '%0%\" profile?");
}

TEST(Strings, AreServedInTheUsersLanguage) {
    for (const auto& table : LanguageTables()) {
        FakeLocale user;
        user.id = table.language;
        const auto strings = MakePosixStringTable(user);
        for (const auto& entry : table.entries)
            EXPECT_EQ(strings->Load(entry.id), entry.text);
    }
}

TEST(Strings, AreEnglishForAnyOtherLanguage) {
    for (const std::int32_t other : {0, -1, 1031, 3082}) {
        FakeLocale user;
        user.id = other;
        EXPECT_EQ(MakePosixStringTable(user)->Load(200), "Please Login");
    }
}

TEST(Strings, AreServedInTheLanguageThatTheHostPrefers) {
    for (const auto& table : LanguageTables()) {
        const auto strings = MakePosixStringTable(FakeLocale(), table.language);
        EXPECT_EQ(
            strings->Load(200),
            table.entries[std::ranges::find(table.entries, 200, &StringEntry::id) - table.entries.begin()]
                .text);
    }
    FakeLocale user;
    user.id = 1046;
    EXPECT_EQ(MakePosixStringTable(user, 1033)->Load(200), "Please Login");
}

TEST(Strings, KnowNoOtherId) {
    const auto strings = MakePosixStringTable(FakeLocale());
    for (const std::int32_t id : {0, -1, 100, 110, 1022, 1098, 1100})
        EXPECT_EQ(strings->Load(id), std::nullopt);
}

}  // namespace
}  // namespace kq
