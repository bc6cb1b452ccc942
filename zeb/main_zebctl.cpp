// zebctl: looks after the login server's database.
#include <iostream>

#include <CLI/CLI.hpp>

#include <kqappsession/Error.h>

#include "tools/program/KeyFile.h"
#include "zeb/Admin.h"
#include "zeb/Terminal.h"

namespace {

using namespace kq::zeb;

enum Exit { kDone = 0, kFailed = 1, kMisused = 2 };

void AddData(CLI::App* command, std::string& data) {
    command->add_option("--data", data, "folder with the database")
        ->type_name("DIR")
        ->envname("ZEBD_DATA")
        ->required();
}

void AddUserCommand(CLI::App* user, std::string& data, Account& account) {
    auto* add = user->add_subcommand("add", "Adds a user; the password is read from standard input.");
    AddData(add, data);
    add->add_option("LOGIN", account.login, "login id")->required();
    add->add_option("--first-name", account.first_name, "first name");
    add->add_option("--last-name", account.last_name, "last name");
    add->add_option("--language", account.language, "language, as its number")->capture_default_str();
    add->add_option("--enterprise", account.enterprise_id, "enterprise");
    add->add_option("--tz", account.tz, "time zone");
    add->add_option("--dst", account.dst, "daylight saving time");
    add->add_option("--buid", account.buid, "business unit");
    add->add_option("--buid-union", account.buid_union, "all business units, separated by |");
    add->add_option("--privileges", account.privileges, "privileges, separated by |");
    add->add_option("--max-sessions", account.max_sessions, "sessions at once; 0: no limit")
        ->check(CLI::NonNegativeNumber);
    add->add_flag("--must-change", account.must_change, "the password must be changed at the first login");
    add->add_flag("--disabled", account.disabled, "the user cannot log in");
    add->callback([&data, &account] {
        const auto store = OpenData(data);
        const auto password = ReadNewPassword(std::cin, StandardInputIsTerminal(), std::cerr);
        const auto uid = AddUser(*store, Argon2Hasher(), account, password);
        std::cout << "zebctl: added user " << account.login << " with uid " << uid << "\n";
    });
}

void AddProfilesCommands(CLI::App& app, std::string& data, std::string& login, std::string& app_id) {
    auto* profiles = app.add_subcommand("profiles", "Profiles of a user: show, remove.");
    profiles->require_subcommand(1);
    auto* show = profiles->add_subcommand(
        "show", "Lists the applications with profiles, or prints those for one application as XML.");
    auto* remove = profiles->add_subcommand("remove", "Removes the profiles, all or for one application.");
    for (auto* command : {show, remove}) {
        AddData(command, data);
        command->add_option("USER", login, "login id")->required();
        command->add_option("--app", app_id, "application");
    }
    show->callback([&data, &login, &app_id] {
        const auto store = OpenData(data);
        std::cout << (app_id.empty() ? ListProfiles(*store, login)
                                     : ShowProfiles(*store, login, app_id) + "\n");
    });
    remove->callback([&data, &login, &app_id] {
        for (const auto& removed : RemoveProfiles(*OpenData(data), login, app_id))
            std::cout << "zebctl: removed the profiles of " << login << " for " << removed << "\n";
    });
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Looks after the database of the login server, also while zebd runs.", "zebctl");
    app.footer("Exit codes: 0 done, 1 failed, 2 wrong command line.");
    app.require_subcommand(1);
    std::string data;
    Account account;
    auto* init = app.add_subcommand("init", "Makes a new database.");
    AddData(init, data);
    init->callback([&data] {
        InitData(data);
        std::cout << "zebctl: made a database in " << data << "\n";
    });
    auto* user = app.add_subcommand("user", "Users: add, list.");
    user->require_subcommand(1);
    AddUserCommand(user, data, account);
    auto* list = user->add_subcommand("list", "Lists the users.");
    AddData(list, data);
    list->callback([&data] { std::cout << ListUsers(*OpenData(data)); });
    std::string key_file;
    auto* key =
        app.add_subcommand("bus-key", "Makes a file with a new key of the bus, for zebd and its peers.");
    key->add_option("FILE", key_file, "the file; only its owner may read it")->required();
    key->callback([&key_file] {
        kq::MakeKeyFile(key_file);
        std::cout << "zebctl: made a key in " << key_file << "\n";
    });
    std::string login;
    std::string app_id;
    AddProfilesCommands(app, data, login, app_id);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        std::cerr << "zebctl: " << error.what() << std::endl;
        return kMisused;
    } catch (const std::exception& error) {
        std::cerr << "zebctl: " << error.what() << std::endl;
        return kFailed;
    }
    return kDone;
}
