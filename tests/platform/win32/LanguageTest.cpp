// The user's language and the string resources, which are held against the texts that they were made from.
#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "platform/Locale.h"
#include "platform/StringTable.h"
#include "platform/posix/StringTables.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

constexpr std::int32_t kEnglish = 1033;

struct Language {
    const char* name;
    std::int32_t id;
};

constexpr Language kLanguages[] = {{"en_US", 1033},  {"pt_BR", 1046},  {"es_MX", 2058},  {"es_CO", 9226},
                                   {"es_PE", 10250}, {"es_AR", 11274}, {"es_CL", 13322}, {"es_UY", 14346},
                                   {"es_PY", 15370}, {"de_DE", 1031}};

// The language in which this program was started.
const Language* Started() {
    const char* const setting = std::getenv("LC_ALL");
    const std::string name = setting ? std::string(setting).substr(0, 5) : "";
    const auto found = std::ranges::find(kLanguages, name, &Language::name);
    return found == std::end(kLanguages) ? nullptr : found;
}

// The texts of a language, English when there are none.
const LanguageTable& TableOf(std::int32_t language) {
    const auto tables = LanguageTables();
    auto found = std::ranges::find(tables, language, &LanguageTable::language);
    if (found == tables.end()) found = std::ranges::find(tables, kEnglish, &LanguageTable::language);
    return *found;
}

TEST(UserLanguage, IsTheOneThatTheProgramWasStartedIn) {
    ASSERT_TRUE(Started());
    EXPECT_EQ(MakeWin32Locale()->UserLocaleId(), Started()->id);
}

TEST(UserLanguage, ChoosesTheTextsAndIsElseEnglish) {
    ASSERT_TRUE(Started());
    const auto strings = MakeWin32StringTable();
    for (const auto& entry : TableOf(Started()->id).entries)
        EXPECT_EQ(strings->Load(entry.id), entry.text);
}

TEST(StringResources, HoldEveryTextOfEveryLanguage) {
    const auto strings = MakeWin32StringTable();
    for (const auto& table : LanguageTables()) {
        SetThreadLocale(static_cast<LCID>(table.language));
        for (const auto& entry : table.entries)
            EXPECT_EQ(strings->Load(entry.id), entry.text) << table.language;
    }
    SetThreadLocale(LOCALE_USER_DEFAULT);
}

TEST(StringResources, AreServedInTheLanguageThatTheHostHasChosen) {
    for (const auto& table : LanguageTables()) {
        const auto platform = MakePlatform(nullptr, table.language);
        EXPECT_EQ(platform->locale->UserLocaleId(), table.language);
        for (const auto& entry : table.entries)
            EXPECT_EQ(platform->strings->Load(entry.id), entry.text) << table.language;
    }
    EXPECT_EQ(MakePlatform(nullptr, 1031)->strings->Load(200), "Please Login");
}

TEST(StringResources, KnowNoOtherId) {
    for (const auto& strings : {MakeWin32StringTable(), MakeWin32StringTable(2058)}) {
        for (const std::int32_t id : {0, -1, 100, 110, 1022, 1098, 1100, 65536 + 101})
            EXPECT_EQ(strings->Load(id), std::nullopt) << id;
    }
}

}  // namespace
}  // namespace kq
