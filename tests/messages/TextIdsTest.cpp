// The list of texts: as the tables have them, and as dialogs, failures and errors show them.
#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/KQAppSessErrorEnum.h>

#include "messages/TextIds.h"
#include "platform/posix/StringTables.h"

namespace kq {
namespace {

std::vector<std::int32_t> ListedIds() {
    std::vector<std::int32_t> ids;
    std::ranges::transform(TextRows(), std::back_inserter(ids), &TextRow::id);
    return ids;
}

TEST(TextIds, AreThoseOfTheTables) {
    for (const auto& table : LanguageTables()) {
        std::vector<std::int32_t> ids;
        std::ranges::transform(table.entries, std::back_inserter(ids), &StringEntry::id);
        EXPECT_EQ(ids, ListedIds()) << table.language;
    }
}

TEST(TextIds, AllSayWhoShowsThemOrWhyNobodyDoes) {
    for (const auto& row : TextRows())
        EXPECT_FALSE(row.who.empty()) << row.id;
}

TEST(TextIds, NameTheErrorThatEachDescriptionBelongsTo) {
    std::map<std::int32_t, std::string> described{
        {TextId::kUnknownError, "the code before KQAppSessErrorEnum"}};
#define KQ_X(name, code) described.emplace(1000 + (name - static_cast<std::int32_t>(0x80040A00U)), #name);
    KQ_APPSESS_ERRORS(KQ_X)
#undef KQ_X
    std::map<std::int32_t, std::string> listed;
    for (const auto& row : TextRows()) {
        if (row.use == TextUse::Error) listed.emplace(row.id, row.who);
    }
    EXPECT_EQ(listed, described);
}

TEST(TextIds, OfTheWaitWindowComeInPairs) {
    std::map<std::int32_t, std::string> waits;
    for (const auto& row : TextRows()) {
        if (row.use == TextUse::Wait) waits.emplace(row.id, row.who);
    }
    for (const auto& [id, who] : waits)
        EXPECT_EQ(waits.count(id ^ 1), 1U) << id << ' ' << who;
}

}  // namespace
}  // namespace kq
