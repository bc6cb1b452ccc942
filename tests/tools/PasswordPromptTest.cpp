// The password prompts of zebctl and kqlogin with a person at the terminal: whatever happens, the terminal
// shows what is typed again afterwards.
#include <csignal>

#include <gtest/gtest.h>

#include "tools/LoginServer.h"
#include "tools/TerminalProcess.h"

namespace kq {
namespace {

constexpr const char* kInterruptKey = "\x03";
constexpr const char* kQuitKey = "\x1c";
constexpr const char* kStopKey = "\x1a";

class PasswordPrompt : public testing::Test {
 protected:
    PasswordPrompt() {
        ChildProcess init({KQ_ZEBCTL, "init", "--data", data_});
        EXPECT_EQ(0, init.ExitCode()) << init.Errors();
    }
    std::vector<std::string> AddUser() const { return {KQ_ZEBCTL, "user", "add", "ann", "--data", data_}; }
    static std::vector<std::string> LogIn() {
        return {KQ_LOGIN, "--address", "127.0.0.1", "--port", "1", "--app", "Demo", "--user", "ann"};
    }
    // The command, started by a shell that says that it was stopped, waits for a line and continues it.
    static std::unique_ptr<TerminalProcess> OnAShell(const std::vector<std::string>& command) {
        std::vector<std::string> shell{"/bin/sh", "-c",
                                       "set -m; \"$0\" \"$@\"; echo \"status $?\"; read line; fg; exit $?"};
        shell.insert(shell.end(), command.begin(), command.end());
        return std::make_unique<TerminalProcess>(shell, std::vector<std::string>{"LC_ALL=C"});
    }
    static void AwaitPrompt(TerminalProcess& program) {
        program.Await("Password: ");
        EXPECT_FALSE(program.IsAsUsual());
    }

    TemporaryFolder folder_;
    std::string data_ = folder_.Path() + "/zeb";
};

TEST_F(PasswordPrompt, OfZebctlAsksTwice) {
    TerminalProcess add(AddUser(), {});
    add.Answer("Password: ", "correct horse");
    add.Answer("Repeat the password: ", "correct horse");
    EXPECT_EQ(0, add.ExitCode());
    EXPECT_EQ("Password: \nRepeat the password: \nzebctl: added user ann with uid 1\n", add.Screen());
    EXPECT_TRUE(add.IsAsUsual());
}

TEST_F(PasswordPrompt, OfZebctlRefusesTwoPasswordsThatDiffer) {
    TerminalProcess add(AddUser(), {});
    add.Answer("Password: ", "correct horse");
    add.Answer("Repeat the password: ", "correct hose");
    EXPECT_EQ(1, add.ExitCode());
    EXPECT_TRUE(add.Screen().ends_with("\nzebctl: the two passwords differ\n")) << add.Screen();
}

TEST_F(PasswordPrompt, OfZebctlTakesTheFirstLineOfAPipe) {
    ChildProcess add(AddUser());
    add.Write("correct horse\r\nmore\n");
    EXPECT_EQ(0, add.ExitCode()) << add.Errors();
    EXPECT_EQ("", add.Errors());
}

TEST_F(PasswordPrompt, OfZebctlNeedsAPassword) {
    for (const auto* input : {"", "\n"}) {
        ChildProcess add(AddUser());
        add.Write(input);
        add.EndInput();
        EXPECT_EQ(1, add.ExitCode());
        EXPECT_EQ("zebctl: ", add.Errors().substr(0, 8));
    }
}

TEST_F(PasswordPrompt, OfZebctlLeavesTheTerminalAsUsualWhenASignalEndsIt) {
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGUSR1}) {
        TerminalProcess add(AddUser(), {});
        AwaitPrompt(add);
        add.Signal(signal);
        EXPECT_EQ(1000 + signal, add.ExitCode()) << add.Screen();
        EXPECT_TRUE(add.IsAsUsual()) << signal;
    }
}

TEST_F(PasswordPrompt, OfZebctlIsEndedByTheInterruptKeyAtEitherQuestion) {
    TerminalProcess add(AddUser(), {});
    AwaitPrompt(add);
    add.Type("correct horse\n");
    add.Await("Repeat the password: ");
    add.Type(kInterruptKey);
    EXPECT_EQ(1000 + SIGINT, add.ExitCode());
    EXPECT_TRUE(add.IsAsUsual());
}

TEST_F(PasswordPrompt, OfKqLoginLeavesTheTerminalAsUsualWhenAKeyEndsIt) {
    for (const auto* key : {kInterruptKey, kQuitKey}) {
        TerminalProcess login(LogIn(), {"XDG_CONFIG_HOME=" + folder_.Path()});
        AwaitPrompt(login);
        login.Type(std::string("part of a pass") + key);
        EXPECT_EQ(key == kQuitKey ? 1000 + SIGQUIT : 128 + SIGINT, login.ExitCode()) << login.Screen();
        EXPECT_TRUE(login.IsAsUsual());
    }
}

TEST_F(PasswordPrompt, IsStoppedAndContinuedAsAnyProgram) {
    for (const auto& command : {AddUser(), LogIn()}) {
        const auto shell = OnAShell(command);
        AwaitPrompt(*shell);
        shell->Type(std::string("part of a pass") + kStopKey);
        shell->Await("status " + std::to_string(128 + SIGTSTP) + "\n");
        EXPECT_TRUE(shell->IsAsUsual());
        shell->Type("go on\n");
        AwaitPrompt(*shell);
        shell->Type(kInterruptKey);
        shell->ExitCode();
        EXPECT_TRUE(shell->IsAsUsual());
    }
}

TEST_F(PasswordPrompt, ForgetsWhatWasTypedBeforeTheStop) {
    const auto shell = OnAShell(AddUser());
    AwaitPrompt(*shell);
    shell->Type(std::string("part of a pass") + kStopKey);
    shell->Await("status ");
    shell->Type("go on\n");
    shell->Answer("Password: ", "correct horse");
    shell->Answer("Repeat the password: ", "correct horse");
    shell->Await("zebctl: added user ann with uid 1\n");
    EXPECT_EQ(0, shell->ExitCode()) << shell->Screen();
    EXPECT_EQ(std::string::npos, shell->Screen().find("pass\n")) << shell->Screen();
}

TEST_F(PasswordPrompt, HidesWhatIsTypedWhenTheProgramWasStoppedFromOutside) {
    TerminalProcess add(AddUser(), {});
    AwaitPrompt(add);
    add.Signal(SIGSTOP);
    add.ShowWhatIsTyped();  // as a shell does for itself
    add.Signal(SIGCONT);
    AwaitPrompt(add);
    add.Type("correct horse\n");
    add.Answer("Repeat the password: ", "correct horse");
    EXPECT_EQ(0, add.ExitCode()) << add.Screen();
}

}  // namespace
}  // namespace kq
