// The commands of zebctl. They work beside a running zebd, which sees every change at its next look.
#include "zeb/Admin.h"

#include <kqappsession/Error.h>

#include "zeb/PrivateFiles.h"

namespace kq::zeb {
namespace {

std::string DatabasePath(const std::string& data_folder) {
    return data_folder + "/zeb.db";
}

[[noreturn]] void Refuse(const std::string& why) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebctl", why);
}

}  // namespace

void InitData(const std::string& data_folder) {
    MakePrivateFolder(data_folder);
    const auto path = DatabasePath(data_folder);
    if (FileExists(path)) Refuse("There is a database in " + data_folder + " already; nothing was changed.");
    Store::Create(path);
}

std::unique_ptr<Store> OpenData(const std::string& data_folder) {
    const auto path = DatabasePath(data_folder);
    if (!FileExists(path))
        Refuse("There is no database in " + data_folder + "; 'zebctl init --data " + data_folder +
               "' makes one.");
    return std::make_unique<Store>(path);
}

std::int32_t AddUser(Store& store, const PasswordHasher& hasher, Account account, const Secret& password) {
    Accounts accounts(store);
    // Said before the password is looked at, which takes a moment.
    if (const auto why = Accounts::WhyNoLogin(account.login); !why.empty()) Refuse(why);
    if (accounts.Find(account.login)) Refuse("There is a user \"" + account.login + "\" already.");
    const auto refusal = CheckNewPassword(password, account.login);
    if (refusal == Refusal::PasswordLength)
        Refuse("The password must have " + std::to_string(kMinPassword) + " to " +
               std::to_string(kMaxPassword) + " characters.");
    if (refusal != Refusal::None) Refuse(std::string(SentenceOf(refusal)) + ".");
    account.password_hash = hasher.Hash(password);
    return accounts.Add(account);
}

std::string ListUsers(Store& store) {
    std::string text = "UID\tLOGIN\tFIRST NAME\tLAST NAME\tMAX SESSIONS\tFLAGS\n";
    for (const auto& account : Accounts(store).All()) {
        std::string flags;
        if (account.disabled) flags += "disabled ";
        if (account.must_change) flags += "must-change ";
        if (!flags.empty()) flags.pop_back();
        text += std::to_string(account.uid) + "\t" + account.login + "\t" + account.first_name + "\t" +
                account.last_name + "\t" + std::to_string(account.max_sessions) + "\t" + flags + "\n";
    }
    return text;
}

}  // namespace kq::zeb
