// Users in the store. Texts are checked before they get there: one that XML cannot carry would make every
// later login of the user fail.
#include "zeb/store/Accounts.h"

#include <array>

#include <kqappsession/Error.h>
#include <kqappsession/XMLMessage.h>

#include "base/Convert.h"
#include "zeb/store/Passwords.h"

namespace kq::zeb {
namespace {

#define KQ_USER_COLUMNS                                                                                      \
    "uid, login, password_hash, first_name, last_name, enterprise_id, language, tz, dst, buid, buid_union, " \
    "privileges, disabled, must_change, max_sessions"

constexpr std::string_view kByLogin = "SELECT " KQ_USER_COLUMNS " FROM users WHERE login = ?1";
constexpr std::string_view kByUid = "SELECT " KQ_USER_COLUMNS " FROM users WHERE uid = ?1";
constexpr std::string_view kAll = "SELECT " KQ_USER_COLUMNS " FROM users ORDER BY login";
constexpr std::string_view kInsert =
    "INSERT INTO users (login, password_hash, first_name, last_name, enterprise_id, language, tz, dst, buid, "
    "buid_union, privileges, disabled, must_change, max_sessions) "
    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)";

#undef KQ_USER_COLUMNS

[[noreturn]] void Refuse(const std::string& why) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), std::string(kStoreSource), why);
}

void CheckTexts(const Account& account) {
    const std::array<const std::string*, 9> texts = {
        &account.first_name, &account.last_name, &account.enterprise_id, &account.language,  &account.tz,
        &account.dst,        &account.buid,      &account.buid_union,    &account.privileges};
    for (const auto* text : texts) {
        const auto characters = CountCharacters(*text);
        if (!characters || HasControlCharacter(*text))
            Refuse("The details of a user must be UTF-8 text without control characters");
        XMLElement("Text", *text);
    }
    if (account.max_sessions < 0) Refuse("The number of sessions cannot be negative");
}

}  // namespace

std::string Accounts::WhyNoLogin(std::string_view login) {
    const auto characters = CountCharacters(login);
    if (!characters) return "A login id must be UTF-8 text";
    if (*characters == 0) return "A login id cannot be empty";
    if (*characters > kMaxLogin)
        return "A login id may have at most " + std::to_string(kMaxLogin) + " characters";
    if (HasControlCharacter(login)) return "A login id cannot contain control characters";
    if (Trim(login).size() != login.size()) return "A login id cannot begin or end with a space";
    return {};
}

std::optional<Account> Accounts::Find(std::string_view login) {
    auto query = store_.Use(kByLogin);
    if (!query.Bind(1, login).Next()) return std::nullopt;
    return Read(query);
}

std::optional<Account> Accounts::Find(std::int32_t uid) {
    auto query = store_.Use(kByUid);
    if (!query.Bind(1, std::int64_t{uid}).Next()) return std::nullopt;
    return Read(query);
}

std::int32_t Accounts::Add(const Account& account) {
    if (const auto why = WhyNoLogin(account.login); !why.empty()) Refuse(why);
    CheckTexts(account);
    Store::Transaction transaction(store_);
    if (Find(account.login)) Refuse("There is already a user \"" + account.login + "\"");
    store_.Use(kInsert)
        .Bind(1, account.login)
        .Bind(2, account.password_hash)
        .Bind(3, account.first_name)
        .Bind(4, account.last_name)
        .Bind(5, account.enterprise_id)
        .Bind(6, account.language)
        .Bind(7, account.tz)
        .Bind(8, account.dst)
        .Bind(9, account.buid)
        .Bind(10, account.buid_union)
        .Bind(11, account.privileges)
        .Bind(12, std::int64_t{account.disabled})
        .Bind(13, std::int64_t{account.must_change})
        .Bind(14, std::int64_t{account.max_sessions})
        .Run();
    const auto uid = static_cast<std::int32_t>(store_.LastRowId());
    transaction.Commit();
    return uid;
}

bool Accounts::ChangePassword(std::int32_t uid, std::string_view old_hash, std::string_view new_hash) {
    return store_
               .Use(
                   "UPDATE users SET password_hash = ?3, must_change = 0 "
                   "WHERE uid = ?1 AND password_hash = ?2")
               .Bind(1, std::int64_t{uid})
               .Bind(2, old_hash)
               .Bind(3, new_hash)
               .Run() == 1;
}

void Accounts::SetDisabled(std::int32_t uid, bool disabled) {
    Store::Transaction transaction(store_);
    store_.Use("UPDATE users SET disabled = ?2 WHERE uid = ?1")
        .Bind(1, std::int64_t{uid})
        .Bind(2, std::int64_t{disabled})
        .Run();
    transaction.Commit();
}

std::vector<Account> Accounts::All() {
    std::vector<Account> accounts;
    auto query = store_.Use(kAll);
    while (query.Next())
        accounts.push_back(Read(query));
    return accounts;
}

Account Accounts::Read(const Query& row) {
    Account account;
    account.uid = static_cast<std::int32_t>(row.Number(0));
    account.login = row.Text(1);
    account.password_hash = row.Text(2);
    account.first_name = row.Text(3);
    account.last_name = row.Text(4);
    account.enterprise_id = row.Text(5);
    account.language = row.Text(6);
    account.tz = row.Text(7);
    account.dst = row.Text(8);
    account.buid = row.Text(9);
    account.buid_union = row.Text(10);
    account.privileges = row.Text(11);
    account.disabled = row.Number(12) != 0;
    account.must_change = row.Number(13) != 0;
    account.max_sessions = static_cast<std::int32_t>(row.Number(14));
    return account;
}

}  // namespace kq::zeb
