// What a login delivers besides the session: the translation table of the user's language and the user's
// profiles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zeb/store/Refusal.h"
#include "zeb/store/Store.h"

namespace kq::zeb {

struct StoredProfiles {
    std::string app_id;
    std::string xml;
};

class UserData {
 public:
    // The largest answer that reaches a client, directly or through an application server: what may be queued
    // for one connection, less a little for the frame and for what relaying adds.
    static constexpr std::size_t kMaxAnswer = (8U << 20) - (64U << 10);
    // The share of profiles in bytes; the rest is for the translation table.
    static constexpr std::size_t kMaxProfiles = 4U << 20;

    // `max_profiles`: bytes of profiles in an answer; kMaxProfiles at most.
    explicit UserData(Store& store, std::size_t max_profiles = kMaxProfiles);

    // The text form of the table of a language; an empty table if the store has no texts of it.
    std::string TranslationTable(const std::string& language);
    // The text form of the user's profiles for an application; an empty collection if there are none yet.
    std::string Profiles(std::int32_t user_uid, const std::string& app_id);
    // BadProfiles if the text is not a profile collection, ProfilesTooLarge if it is over the limit; the
    // stored profiles are then unchanged.
    Refusal SetProfiles(std::int32_t user_uid, const std::string& app_id, std::string_view xml);
    // Of one user, by application.
    std::vector<StoredProfiles> AllProfiles(std::int32_t user_uid);
    // False when there are none.
    bool RemoveProfiles(std::int32_t user_uid, const std::string& app_id);

 private:
    Store& store_;
    std::size_t max_profiles_;
    // Only other programs change texts; their commits empty this.
    std::map<std::string, std::string> tables_;
    std::int64_t tables_of_ = 0;
};

}  // namespace kq::zeb
