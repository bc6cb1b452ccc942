// The commands of zebctl. A running zebd sees every change when it reads the database next.
#include "zeb/admin/Admin.h"

#include <algorithm>

#include <kqappsession/Error.h>
#include <kqappsession/WebData.h>

#include "tools/program/OneLine.h"
#include "zeb/store/PrivateFiles.h"
#include "zeb/store/UserData.h"

namespace kq::zeb {
namespace {

std::string DatabasePath(const std::string& data_folder) {
    return data_folder + "/zeb.db";
}

[[noreturn]] void Refuse(const std::string& why) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebctl", why);
}

std::int32_t UidOf(Store& store, const std::string& login) {
    const auto account = Accounts(store).Find(login);
    if (!account) Refuse("There is no user \"" + login + "\"");
    return account->uid;
}

// Of every application when `app_id` is empty; at least one.
std::vector<StoredProfiles> FindProfiles(Store& store, const std::string& login, const std::string& app_id) {
    auto all = UserData(store).AllProfiles(UidOf(store, login));
    if (!app_id.empty())
        std::erase_if(all, [&](const StoredProfiles& stored) { return stored.app_id != app_id; });
    if (all.empty())
        Refuse("\"" + login + "\" has no profiles" + (app_id.empty() ? "" : " for \"" + app_id + "\""));
    return all;
}

// "?" for a text that is not a collection.
std::string CountProfiles(const std::string& xml) {
    Profiles profiles;
    try {
        profiles.LoadXML(xml);
    } catch (const Error&) {
        return "?";
    }
    return std::to_string(profiles.Count());
}

}  // namespace

void InitData(const std::string& data_folder) {
    MakePrivateFolder(data_folder);
    const auto path = DatabasePath(data_folder);
    if (PrivateFileExists(path))
        Refuse("There is already a database in " + data_folder + "; nothing was changed");
    Store::Create(path);
}

std::unique_ptr<Store> OpenData(const std::string& data_folder) {
    const auto path = DatabasePath(data_folder);
    if (!PrivateFolderExists(data_folder) || !PrivateFileExists(path))
        Refuse("There is no database in " + data_folder + "; 'zebctl init --data " + data_folder +
               "' makes one");
    return std::make_unique<Store>(path);
}

std::int32_t AddUser(Store& store, const PasswordHasher& hasher, Account account, const Secret& password) {
    Accounts accounts(store);
    // Said before the password is looked at, which takes a moment.
    if (const auto why = Accounts::WhyNoLogin(account.login); !why.empty()) Refuse(why);
    if (accounts.Find(account.login)) Refuse("There is already a user \"" + account.login + "\"");
    const auto refusal = CheckNewPassword(password, account.login);
    if (refusal == Refusal::PasswordLength)
        Refuse("The password must have " + std::to_string(kMinPassword) + " to " +
               std::to_string(kMaxPassword) + " characters");
    if (refusal != Refusal::None) Refuse(std::string(SentenceOf(refusal)));
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
        text += std::to_string(account.uid) + "\t" + OneLine(account.login) + "\t" +
                OneLine(account.first_name) + "\t" + OneLine(account.last_name) + "\t" +
                std::to_string(account.max_sessions) + "\t" + flags + "\n";
    }
    return text;
}

std::string ListProfiles(Store& store, const std::string& login) {
    std::string text = "APP\tBYTES\tPROFILES\n";
    for (const auto& stored : UserData(store).AllProfiles(UidOf(store, login))) {
        text += OneLine(stored.app_id) + "\t" + std::to_string(stored.xml.size()) + "\t" +
                CountProfiles(stored.xml) + "\n";
    }
    return text;
}

std::string ShowProfiles(Store& store, const std::string& login, const std::string& app_id) {
    return FindProfiles(store, login, app_id).front().xml;
}

std::vector<std::string> RemoveProfiles(Store& store, const std::string& login, const std::string& app_id) {
    const auto uid = UidOf(store, login);
    std::vector<std::string> removed;
    for (const auto& stored : FindProfiles(store, login, app_id)) {
        if (UserData(store).RemoveProfiles(uid, stored.app_id)) removed.push_back(stored.app_id);
    }
    return removed;
}

}  // namespace kq::zeb
