// Translation tables and profiles in the store.
#include "zeb/UserData.h"

#include <kqappsession/WebData.h>

namespace kq::zeb {

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

void UserData::SetProfiles(std::int32_t user_uid, const std::string& app_id, const std::string& xml) {
    kq::Profiles profiles;
    profiles.LoadXML(xml);
    Store::Transaction transaction(store_);
    store_
        .Use(
            "INSERT INTO profiles (user_uid, app_id, xml) VALUES (?1, ?2, ?3) "
            "ON CONFLICT (user_uid, app_id) DO UPDATE SET xml = excluded.xml")
        .Bind(1, std::int64_t{user_uid})
        .Bind(2, app_id)
        .Bind(3, profiles.ToXML())
        .Run();
    transaction.Commit();
}

}  // namespace kq::zeb
