// What a login delivers beside the session: the translation table of the user's language and the user's
// profiles.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "zeb/Store.h"

namespace kq::zeb {

class UserData {
 public:
    explicit UserData(Store& store) : store_(store) {}

    // The text form of the table of a language; an empty table when the store has no texts of it.
    std::string TranslationTable(const std::string& language);
    // The text form of the user's profiles for an application; an empty collection when there are none yet.
    std::string Profiles(std::int32_t user_uid, const std::string& app_id);
    // Raises kq::Error when the text is no profile collection.
    void SetProfiles(std::int32_t user_uid, const std::string& app_id, const std::string& xml);

 private:
    Store& store_;
    // Texts are changed by other programs only; their commits empty this.
    std::map<std::string, std::string> tables_;
    std::int64_t tables_of_ = 0;
};

}  // namespace kq::zeb
