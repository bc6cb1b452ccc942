// Translation tables and profiles in the store.
#include "zeb/store/UserData.h"

#include <algorithm>
#include <optional>

#include <kqappsession/Error.h>
#include <kqappsession/WebData.h>

#include "messages/ASMessages.h"

namespace kq::zeb {
namespace {

// The text form as this library writes it, whatever other program wrote `xml`; nothing when that is not a
// collection.
std::optional<std::string> Normalized(std::string_view xml) {
    kq::Profiles profiles;
    try {
        profiles.LoadXML(xml);
        return profiles.ToXML();
    } catch (const Error&) {
        return std::nullopt;
    }
}

// Profiles are nested in the answer with their markup escaped where it has to be, so only the answer shows
// how much they take up.
std::size_t SizeInAnswer(const std::string& profiles) {
    ASLoginResponse answer;
    answer.Profiles = profiles;
    return answer.Build().ToXML().size();
}

}  // namespace

UserData::UserData(Store& store, std::size_t max_profiles)
    : store_(store), max_profiles_(std::min(max_profiles, kMaxProfiles)) {}

std::string UserData::TranslationTable(const std::string& language) {
    const auto changes = store_.OutsideChanges();
    if (changes != tables_of_) tables_.clear();
    tables_of_ = changes;
    auto& xml = tables_[language];
    if (!xml.empty()) return xml;
    kq::TranslationTable table;
    table.SetLanguage(language);
    auto query = store_.Use("SELECT key, text FROM translations WHERE language = ?1");
    query.Bind(1, language);
    while (query.Next())
        table.Set(query.Text(0), query.Text(1));
    xml = table.ToXML();
    return xml;
}

std::string UserData::Profiles(std::int32_t user_uid, const std::string& app_id) {
    auto query = store_.Use("SELECT xml FROM profiles WHERE user_uid = ?1 AND app_id = ?2");
    query.Bind(1, std::int64_t{user_uid}).Bind(2, app_id);
    return query.Next() ? query.Text(0) : kq::Profiles().ToXML();
}

Refusal UserData::SetProfiles(std::int32_t user_uid, const std::string& app_id, std::string_view xml) {
    const auto profiles = Normalized(xml);
    if (!profiles) return Refusal::BadProfiles;
    if (SizeInAnswer(*profiles) > max_profiles_) return Refusal::ProfilesTooLarge;
    Store::Transaction transaction(store_);
    store_
        .Use(
            "INSERT INTO profiles (user_uid, app_id, xml) VALUES (?1, ?2, ?3) "
            "ON CONFLICT (user_uid, app_id) DO UPDATE SET xml = excluded.xml")
        .Bind(1, std::int64_t{user_uid})
        .Bind(2, app_id)
        .Bind(3, *profiles)
        .Run();
    transaction.Commit();
    return Refusal::None;
}

std::vector<StoredProfiles> UserData::AllProfiles(std::int32_t user_uid) {
    std::vector<StoredProfiles> all;
    auto query = store_.Use("SELECT app_id, xml FROM profiles WHERE user_uid = ?1 ORDER BY app_id");
    query.Bind(1, std::int64_t{user_uid});
    while (query.Next())
        all.push_back({query.Text(0), query.Text(1)});
    return all;
}

bool UserData::RemoveProfiles(std::int32_t user_uid, const std::string& app_id) {
    Store::Transaction transaction(store_);
    const auto removed = store_.Use("DELETE FROM profiles WHERE user_uid = ?1 AND app_id = ?2")
                             .Bind(1, std::int64_t{user_uid})
                             .Bind(2, app_id)
                             .Run();
    transaction.Commit();
    return removed != 0;
}

}  // namespace kq::zeb
