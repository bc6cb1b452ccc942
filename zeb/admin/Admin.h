// What zebctl does, apart from its command line. zebd opens its data in the same way.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kqappsession/Secret.h>

#include "zeb/store/Accounts.h"
#include "zeb/store/Passwords.h"

namespace kq::zeb {

// Creates the folder (0700) and the database in it (0600). Raises kq::Error when there is a database already,
// and for a folder that is not private (see PrivateFiles.h).
void InitData(const std::string& data_folder);
// Opens the database of a folder. Raises kq::Error when there is none, or folder or file are not private.
std::unique_ptr<Store> OpenData(const std::string& data_folder);
// Adds a user and returns the uid. Raises kq::Error for an invalid or duplicate login id and for a password
// that breaks the rules.
std::int32_t AddUser(Store& store, const PasswordHasher& hasher, Account account, const Secret& password);
// One line for each user, by login id: uid, login id, names, flags; separated by tabs, with a heading.
std::string ListUsers(Store& store);
// One line for each application that has profiles of the user: application, size in bytes, number of
// profiles; separated by tabs, with a heading. Raises kq::Error when there is no such user.
std::string ListProfiles(Store& store, const std::string& login);
// The text form of the user's profiles for an application. Raises kq::Error when there is no such user or the
// user has no profiles for it.
std::string ShowProfiles(Store& store, const std::string& login, const std::string& app_id);
// Removes them, for every application if `app_id` is empty. Returns the applications. Errors as above.
std::vector<std::string> RemoveProfiles(Store& store, const std::string& login, const std::string& app_id);

}  // namespace kq::zeb
