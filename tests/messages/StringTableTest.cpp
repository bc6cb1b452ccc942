// The loader of the compiled-in texts: which language is served, which ids are known.
#include <algorithm>

#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"
#include "platform/Languages.h"
#include "platform/posix/StringTables.h"

namespace kq {
namespace {

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
        EXPECT_EQ(strings->Language(), TextLanguageFor(table.language).tongue);
        for (const auto& entry : table.entries)
            EXPECT_EQ(strings->Load(entry.id), entry.text);
    }
}

TEST(Strings, AreEnglishForAnyOtherLanguage) {
    for (const std::int32_t other : {0, -1, 1031, 2057}) {
        FakeLocale user;
        user.id = other;
        EXPECT_EQ(MakePosixStringTable(user)->Load(200), "Please Login");
    }
}

TEST(Strings, AreThereInEveryLanguageThatIsToldToPorts) {
    for (const TextLanguage& language : kTextLanguages)
        EXPECT_EQ(std::ranges::count(LanguageTables(), language.locale, &LanguageTable::language), 1);
    EXPECT_EQ(LanguageTables().size(), std::size(kTextLanguages));
}

TEST(Strings, KnowNoOtherId) {
    const auto strings = MakePosixStringTable(FakeLocale());
    for (const std::int32_t id : {0, -1, 100, 110, 1022, 1098, 1100})
        EXPECT_EQ(strings->Load(id), std::nullopt);
}

}  // namespace
}  // namespace kq
