// kqlogin --tty with a person at the terminal, a login server and an application server as processes.
#include <csignal>

#include <gtest/gtest.h>

#include "tools/Site.h"
#include "tools/TerminalProcess.h"

namespace kq {
namespace {

class KqLoginTty : public testing::Test {
 protected:
    std::unique_ptr<TerminalProcess> LogIn(const std::vector<std::string>& arguments = {},
                                           const std::string& locale = "C") const {
        std::vector<std::string> command{KQ_LOGIN, "--tty", "--app", "Demo"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<TerminalProcess>(
            command,
            std::vector<std::string>{"XDG_CONFIG_HOME=" + folder_.Path() + "/config", "LC_ALL=" + locale});
    }
    static void FindServer(TerminalProcess& login, const std::string& port) {
        login.Await("-- Server Configuration\n");
        login.Answer("Address: ", "127.0.0.1");
        login.Answer("Port: ", port);
        login.Answer("Connection Time-out (in seconds) [10]: ", "");
        login.Answer("Use App Server for Login (y/n) [", "n");
        login.Answer("2. Cancel\n[1]: ", "");
    }
    static void GiveDetails(TerminalProcess& login, const std::string& user, const std::string& password) {
        login.Answer("Login ID", user);
        login.Answer("Password: ", password);
        login.Answer("1. OK\n", "");
    }
    static void MakeProfile(TerminalProcess& login, const std::string& name) {
        login.Await("clicking the \"New\" button.\n");
        AnswerProfiles(login, name);
    }
    static void AnswerProfiles(TerminalProcess& login, const std::string& name) {
        login.Answer("1. OK\n", "");
        login.Answer("1. New\n", "new");
        login.Answer("Please enter a name for the new profile: ", name);
        login.Answer("1. OK\n", "");
        login.Answer("  1. " + name + "\n[1]: ", "");
        login.Answer("Choose\n", "");
    }

    TemporaryFolder folder_;
};

TEST_F(KqLoginTty, LogsInAPersonWhoKnowsNothingButTheServer) {
    Site site;
    const auto login = LogIn({"--register", "--send", "Hello from the terminal", "--wait"});
    FindServer(*login, site.Zeb().Port());
    GiveDetails(*login, "ann", LoginServer::kPassword);
    MakeProfile(*login, "Sales");
    login->Await("LoginState kqaslsSystemLogin\n");
    login->Await("CurrentProfile Sales\n");
    login->Await("Attempting to register with the application server.  Please wait.\n");
    login->Await("LoginState kqaslsServerLogin\n");
    const std::string line = site.AppServer().AwaitLine("ReceivedData ");
    EXPECT_TRUE(line.ends_with(" Text=\"Hello from the terminal\"")) << line;
    EXPECT_TRUE(login->IsAsUsual());
    login->Type("\x03");  // nobody asks: the key is a signal again
    EXPECT_EQ(0, login->ExitCode()) << login->Screen();
    EXPECT_EQ(std::string::npos, login->Screen().find(LoginServer::kPassword)) << login->Screen();
    EXPECT_NE(std::string::npos, login->Screen().find("Login ID: ann\n")) << login->Screen();
}

// Somebody who has a server in the settings file, and no profile yet.
class KqLoginTtyAgain : public KqLoginTty {
 protected:
    KqLoginTtyAgain() {
        const auto first =
            RunLogin(folder_.Path(), {"--address", "127.0.0.1", "--port", site_.Zeb().Port(), "--app", "Demo",
                                      "--user", "ann", "--save-settings", "--no-use-as-server"});
        EXPECT_EQ(0, first->ExitCode()) << first->Errors();
    }
    Site site_;
};

TEST_F(KqLoginTtyAgain, AsksAgainAfterAWrongPassword) {
    const auto login = LogIn();
    GiveDetails(*login, "ann", "Wr0ng-pas5word");
    login->Await("Would you like to try again?\n");
    login->Answer("  1. Yes\n  2. No\n[1]: ", "");
    login->Await("Login ID [ann]: ");
    login->Type("\n");
    login->Answer("Password: ", LoginServer::kPassword);
    login->Answer("1. OK\n", "");
    MakeProfile(*login, "Sales");
    login->Await("LoginState kqaslsSystemLogin\n");
    EXPECT_EQ(0, login->ExitCode()) << login->Screen();
    EXPECT_EQ(std::string::npos, login->Screen().find("Wr0ng"));
    EXPECT_EQ(std::string::npos, login->Screen().find(LoginServer::kPassword));
}

TEST_F(KqLoginTtyAgain, EndsWhenThePersonDoesNotTryAgain) {
    const auto login = LogIn({"--json"});
    GiveDetails(*login, "ann", "Wr0ng-pas5word");
    login->Answer("  1. Yes\n  2. No\n[1]: ", "no");
    EXPECT_EQ(10, login->ExitCode());
    login->Await(R"({"result":"given up","LoginState":"kqaslsNotLoggedIn"})");
    login->Await("kqlogin: given up by the user\n");
}

TEST_F(KqLoginTtyAgain, BeginsAgainWhenThePersonWantsAnotherLogin) {
    const auto login = LogIn({"--register"});
    GiveDetails(*login, "ann", LoginServer::kPassword);
    login->Await("clicking the \"New\" button.\n");
    site_.AppServer().Signal(SIGKILL);
    EXPECT_EQ(1000 + SIGKILL, site_.AppServer().ExitCode());
    AnswerProfiles(*login, "Sales");
    login->Answer("  1. Yes\n  2. No\n  3. Cancel\n[1]: ", "no");
    login->Await("Login ID [ann]: ");
    login->Type("\x03");
    EXPECT_EQ(10, login->ExitCode()) << login->Screen();
}

TEST_F(KqLoginTtyAgain, IsCancelledByTheInterruptKeyAndByTheEndOfTheInput) {
    for (const auto* const key : {"\x03", "\x04"}) {
        const auto login = LogIn();
        login->Answer("Login ID", "ann");
        login->Await("Password: ");
        EXPECT_FALSE(login->IsAsUsual());
        login->Type(key);
        EXPECT_EQ(10, login->ExitCode()) << login->Screen();
        EXPECT_TRUE(login->IsAsUsual());
        EXPECT_TRUE(login->Screen().ends_with("\nkqlogin: given up by the user\n")) << login->Screen();
    }
}

TEST_F(KqLoginTtyAgain, LeavesTheTerminalAsUsualWhenASignalEndsIt) {
    for (const int signal : {SIGTERM, SIGINT, SIGQUIT}) {
        const auto login = LogIn();
        login->Answer("Login ID", "ann");
        login->Await("Password: ");
        login->Signal(signal);
        EXPECT_EQ(signal == SIGQUIT ? 1000 + SIGQUIT : 128 + signal, login->ExitCode()) << login->Screen();
        EXPECT_TRUE(login->IsAsUsual()) << signal;
    }
}

TEST_F(KqLoginTtyAgain, EndsWhenTheTerminalHasGone) {
    const auto login = LogIn();
    login->Await("Login ID");
    login->HangUp();
    EXPECT_EQ(128 + SIGHUP, login->ExitCode());
}

TEST_F(KqLoginTtyAgain, SpeaksThePersonsLanguage) {
    const auto login = LogIn({}, "pt_BR.UTF-8");
    login->Answer("ID de usuário: ", "ann");
    login->Answer("Senha: ", "Wr0ng-pas5word");
    login->Answer("1. OK\n", "");
    login->Answer("  1. Sim\n  2. Não\n[1]: ", "não");
    EXPECT_EQ(10, login->ExitCode()) << login->Screen();
}

TEST_F(KqLoginTtyAgain, TakesItsAnswersFromAPipeToo) {
    const auto login = RunLogin(folder_.Path(), {"--tty", "--app", "Demo"},
                                "ann\n" + std::string(LoginServer::kPassword) + "\n1\n\nNew\nSales\n\n\n");
    EXPECT_EQ(0, login->ExitCode()) << login->Errors();
    EXPECT_EQ("LoginState kqaslsSystemLogin\n", login->Output().substr(0, 29));
    EXPECT_EQ(std::string::npos, login->Errors().find(LoginServer::kPassword));
}

TEST_F(KqLoginTtyAgain, IsGivenUpWhenThePipeEnds) {
    const auto login = RunLogin(folder_.Path(), {"--tty", "--app", "Demo"}, std::nullopt);
    EXPECT_EQ(10, login->ExitCode());
    EXPECT_TRUE(login->Errors().ends_with("\nkqlogin: given up by the user\n")) << login->Errors();
}

TEST_F(KqLoginTty, DoesNotAskWhereNobodySeesTheQuestion) {
    TerminalProcess login(
        {"/bin/sh", "-c", "\"$0\" --tty --app Demo 2>\"$1\"; code=$?; cat \"$1\"; exit $code", KQ_LOGIN,
         folder_.Path() + "/errors"},
        {});
    EXPECT_EQ(2, login.ExitCode());
    EXPECT_EQ("kqlogin: --tty asks on standard error, which is not the terminal\n", login.Screen());
}

}  // namespace
}  // namespace kq
