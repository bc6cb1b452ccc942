// zebctl: administers the login server's database.
#include <functional>
#include <limits>
#include <unistd.h>

#include <kqappsession/Error.h>

#include "tools/program/CommandLine.h"
#include "tools/program/KeyFile.h"
#include "tools/program/OneLine.h"
#include "tools/program/Output.h"
#include "tools/program/PasswordInput.h"
#include "tools/program/Program.h"
#include "zeb/admin/Admin.h"

namespace {

using namespace kq;
using namespace kq::zeb;

constexpr auto kLargest = std::numeric_limits<std::int32_t>::max();

struct Command {
    std::string data;
    Account account;
    std::int32_t language = 1033;
    std::string app_id;
    std::string key_file;
    std::function<void(const Command&)> run;
};

[[noreturn]] void Fail(const char* what) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebctl", what);
}

// From a terminal twice, so that a slip does not lock the user out.
Secret ReadNewPassword() {
    PasswordInput input(STDIN_FILENO, STDERR_FILENO);
    auto password = input.Read("Password: ");
    if (password.Empty()) Fail("no password was given");
    if (input.IsTerminal() && input.Read("Repeat the password: ").Reveal() != password.Reveal())
        Fail("the two passwords differ");
    return password;
}

void Init(const Command& command) {
    InitData(command.data);
    Print("zebctl: made a database in " + OneLine(command.data) + "\n");
}

void AddTheUser(const Command& command) {
    const auto store = OpenData(command.data);
    Account account = command.account;
    account.language = std::to_string(command.language);
    const auto uid = AddUser(*store, Argon2Hasher(), account, ReadNewPassword());
    Print("zebctl: added user " + OneLine(account.login) + " with uid " + std::to_string(uid) + "\n");
}

void List(const Command& command) {
    Print(ListUsers(*OpenData(command.data)));
}

// All applications, or the profiles for one as XML.
void ShowTheProfiles(const Command& command) {
    const auto store = OpenData(command.data);
    const std::string& login = command.account.login;
    Print(command.app_id.empty() ? ListProfiles(*store, login)
                                 : ShowProfiles(*store, login, command.app_id) + "\n");
}

void RemoveTheProfiles(const Command& command) {
    const std::string& login = command.account.login;
    for (const auto& app_id : RemoveProfiles(*OpenData(command.data), login, command.app_id))
        Print("zebctl: removed the profiles of " + OneLine(login) + " for " + OneLine(app_id) + "\n");
}

void MakeBusKey(const Command& command) {
    MakeKeyFile(command.key_file);
    Print("zebctl: made a key in " + OneLine(command.key_file) + "\n");
}

CLI::App* AddCommand(CLI::App& parent, Command& command, const char* name, const char* what,
                     void (*run)(const Command&)) {
    auto* const added = parent.add_subcommand(name, what);
    added->callback([&command, run] { command.run = run; });
    added->add_option("--data", command.data, "folder with the database")
        ->type_name("DIR")
        ->envname("ZEBD_DATA")
        ->required();
    return added;
}

void AddAccountOptions(CLI::App& add, Command& command) {
    Account& account = command.account;
    add.add_option("LOGIN", account.login, "login id")->required();
    add.add_option("--first-name", account.first_name, "first name");
    add.add_option("--last-name", account.last_name, "last name");
    add.add_option("--language", command.language, "locale identifier, e.g. 1033")
        ->check(InRange({1, kLargest}))
        ->capture_default_str();
    add.add_option("--enterprise", account.enterprise_id, "enterprise");
    add.add_option("--tz", account.tz, "time zone");
    add.add_option("--dst", account.dst, "daylight saving time");
    add.add_option("--buid", account.buid, "business unit");
    add.add_option("--buid-union", account.buid_union, "all business units, separated by |");
    add.add_option("--privileges", account.privileges, "privileges, separated by |");
    add.add_option("--max-sessions", account.max_sessions, "maximum number of sessions; 0: no limit")
        ->check(InRange({0, kLargest}))
        ->capture_default_str();
    add.add_flag("--must-change", account.must_change, "the password must be changed at the first login");
    add.add_flag("--disabled", account.disabled, "the user cannot log in");
}

void AddProfilesCommands(CLI::App& app, Command& command) {
    auto* const profiles = app.add_subcommand("profiles", "Manages the profiles of a user");
    profiles->require_subcommand(1);
    for (auto* const added :
         {AddCommand(
              *profiles, command, "show",
              "Lists the applications with profiles, or prints the profiles for one application as XML",
              ShowTheProfiles),
          AddCommand(*profiles, command, "remove", "Removes the profiles for one application or for all",
                     RemoveTheProfiles)}) {
        added->add_option("USER", command.account.login, "login id")->required();
        added->add_option("--app", command.app_id, "application identifier");
    }
}

int Main(int argc, const char* const* argv) {
    Command command;
    CLI::App app(
        "Administers the login server's database; zebd may be running.\n"
        "Example: zebctl init --data /var/lib/zebd",
        "zebctl");
    app.footer(
        "'zebctl COMMAND --help' shows the options of a command. A new password is the first line of "
        "standard input; on a terminal there is a prompt without echo.\n\n" +
        ExitCodeTable(
            {{kExitDone, "done"}, {kExitFailed, "failed"}, {kExitMisused, "invalid command line"}}));
    PrepareCommandLine(app);
    app.require_subcommand(1);
    AddCommand(app, command, "init", "Creates a new database", Init);
    auto* const user = app.add_subcommand("user", "Manages the users");
    user->require_subcommand(1);
    AddAccountOptions(*AddCommand(*user, command, "add", "Adds a user", AddTheUser), command);
    AddCommand(*user, command, "list", "Lists the users", List);
    AddProfilesCommands(app, command);
    auto* const key = app.add_subcommand("bus-key", "Creates a file with a new bus key");
    key->callback([&command] { command.run = MakeBusKey; });
    key->add_option("FILE", command.key_file, "the file; only its owner may read it")->required();
    if (const auto code = ParseCommandLine(app, argc, argv)) return *code;
    command.run(command);
    return kExitDone;
}

}  // namespace

int main(int argc, char** argv) {
    return RunProgram("zebctl", kExitFailed, [&] { return Main(argc, argv); });
}
