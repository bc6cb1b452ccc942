// Which texts the users of a language get, and which numbers a host may name a language by.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/Platform.h>

#include "platform/Locale.h"
#include "platform/Machine.h"
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
    EXPECT_EQ(platform->Parts().locale->UserLocaleId(), language);
    for (const auto& entry : TableOf(texts).entries)
        EXPECT_EQ(platform->Parts().strings->Load(entry.id), entry.text) << language;
}

std::string RefusalOf(std::int32_t language) {
    try {
        MakePlatform(nullptr, language);
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), NumberOf(RuntimeError::InvalidProcedureCall));
        return error.Description();
    }
    return {};
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

TEST(TextLanguage, IsRefusedWhenItsNumberIsNoLocaleIdentifier) {
    for (const std::int32_t number : {0, -1, 1024, 2048, 0xFC00, 0x10000, 99'999, 0x7FFFFFFF}) {
        EXPECT_EQ(RefusalOf(number), "The language " + std::to_string(number) +
                                         " is not a locale identifier; use one such as 1033, or none for the "
                                         "user's own");
    }
}

}  // namespace
}  // namespace kq
