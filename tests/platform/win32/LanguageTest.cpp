// The user's language and the string resources, which are held against the texts that they were made from.
#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "platform/Languages.h"
#include "platform/Locale.h"
#include "platform/Machine.h"
#include "platform/StringTable.h"
#include "platform/posix/StringTables.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

struct Language {
    const char* name;
    std::int32_t id;
    std::int32_t texts;  // whose texts its users get
};

constexpr Language kLanguages[] = {
    {"en_US", 1033, 1033},   {"pt_BR", 1046, 1046},   {"es_MX", 2058, 2058},   {"es_CO", 9226, 9226},
    {"es_PE", 10250, 10250}, {"es_AR", 11274, 11274}, {"es_CL", 13322, 13322}, {"es_UY", 14346, 14346},
    {"es_PY", 15370, 15370}, {"de_DE", 1031, 1033},   {"en_GB", 2057, 1033},   {"pt_PT", 2070, 1046},
    {"es_ES", 3082, 2058},   {"es_BO", 16394, 2058},  {"es_CR", 5130, 2058},   {"es_DO", 7178, 2058},
    {"es_EC", 12298, 2058},  {"es_GT", 4106, 2058},   {"es_HN", 18442, 2058},  {"es_NI", 19466, 2058},
    {"es_PA", 6154, 2058},   {"es_PR", 20490, 2058},  {"es_SV", 17418, 2058},  {"es_US", 21514, 2058},
    {"es_VE", 8202, 2058}};

// The language in which this program was started.
const Language* Started() {
    const char* const setting = std::getenv("LC_ALL");
    const std::string name = setting ? std::string(setting).substr(0, 5) : "";
    const auto found = std::ranges::find(kLanguages, name, &Language::name);
    return found == std::end(kLanguages) ? nullptr : found;
}

const LanguageTable& TableOf(std::int32_t language) {
    return *std::ranges::find(LanguageTables(), language, &LanguageTable::language);
}

TEST(UserLanguage, IsTheOneThatTheProgramWasStartedIn) {
    ASSERT_TRUE(Started());
    EXPECT_EQ(MakeWin32Locale()->UserLocaleId(), Started()->id);
}

TEST(UserLanguage, ChoosesTheTexts) {
    ASSERT_TRUE(Started());
    const auto strings = MakeWin32StringTable();
    EXPECT_EQ(strings->Language(), TextLanguageFor(Started()->texts).tongue);
    for (const auto& entry : TableOf(Started()->texts).entries)
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
        EXPECT_EQ(platform->Parts().locale->UserLocaleId(), table.language);
        EXPECT_EQ(platform->Parts().strings->Language(), TextLanguageFor(table.language).tongue);
        for (const auto& entry : table.entries)
            EXPECT_EQ(platform->Parts().strings->Load(entry.id), entry.text) << table.language;
    }
}

TEST(StringResources, KnowNoOtherId) {
    for (const auto& strings : {MakeWin32StringTable(), MakeWin32StringTable(2058)}) {
        for (const std::int32_t id : {0, -1, 100, 110, 1022, 1098, 1100, 65536 + 101})
            EXPECT_EQ(strings->Load(id), std::nullopt) << id;
    }
}

}  // namespace
}  // namespace kq
