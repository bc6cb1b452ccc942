// Which texts the users of a language get.
#include <algorithm>

#include <gtest/gtest.h>

#include <kqappsession/Platform.h>

#include "platform/Locale.h"
#include "platform/StringTable.h"
#include "platform/posix/StringTables.h"

namespace kq {
namespace {

const LanguageTable& TableOf(std::int32_t language) {
    return *std::ranges::find(LanguageTables(), language, &LanguageTable::language);
}

// A program in `language` has all texts of the table `texts`, and its own identifier.
void ExpectTexts(std::int32_t language, std::int32_t texts) {
    const auto platform = MakePlatform(nullptr, language);
    EXPECT_EQ(platform->locale->UserLocaleId(), language);
    for (const auto& entry : TableOf(texts).entries)
        EXPECT_EQ(platform->strings->Load(entry.id), entry.text) << language;
}

// Of any country, and of none (10 and 22).
TEST(TextLanguage, OfAnotherSpanishIsMexicos) {
    for (const std::int32_t spanish : {1034, 3082, 4106, 5130, 6154, 7178, 8202, 12298, 16394, 17418, 18442,
                                       19466, 20490, 21514, 22538, 23562, 58378, 10})
        ExpectTexts(spanish, 2058);
}

TEST(TextLanguage, OfAnotherPortugueseIsBrazils) {
    for (const std::int32_t portuguese : {2070, 22})
        ExpectTexts(portuguese, 1046);
}

TEST(TextLanguage, OfEveryOtherLanguageIsEnglish) {
    for (const std::int32_t other : {2057, 1031, 1036, 1027, 1110, 1281, 127, 0xFFFE})
        ExpectTexts(other, 1033);
}

}  // namespace
}  // namespace kq
