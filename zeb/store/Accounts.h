// The users: their data, permissions and password hashes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zeb/store/Store.h"

namespace kq::zeb {

struct Account {
    std::int32_t uid = 0;
    std::string login;
    std::string password_hash;
    std::string first_name;
    std::string last_name;
    std::string enterprise_id;
    std::string language = "1033";
    std::string tz;
    std::string dst;
    std::string buid;
    std::string buid_union;  // separated by |
    std::string privileges;  // separated by |
    bool disabled = false;
    bool must_change = false;
    std::int32_t max_sessions = 0;  // 0: no limit
};

class Accounts {
 public:
    static constexpr std::size_t kMaxLogin = 64;  // characters

    explicit Accounts(Store& store) : store_(store) {}

    // Login ids are compared exactly.
    std::optional<Account> Find(std::string_view login);
    std::optional<Account> Find(std::int32_t uid);
    // Stores a new user; chooses and returns its uid. Raises kq::Error for a duplicate or invalid login id,
    // and for a text that a message cannot carry.
    std::int32_t Add(const Account& account);
    // Replaces the hash and clears must_change. False when the hash is not `old_hash`, because another change
    // came first. Within a transaction of the caller, or as one.
    bool ChangePassword(std::int32_t uid, std::string_view old_hash, std::string_view new_hash);
    void SetDisabled(std::int32_t uid, bool disabled);
    // By login id.
    std::vector<Account> All();

    // Why a text is not valid as a login id, as a description; empty when it is: 1 to 64 characters, no
    // control characters, no space at either end.
    static std::string WhyNoLogin(std::string_view login);

 private:
    static Account Read(const Query& row);
    Store& store_;
};

}  // namespace kq::zeb
