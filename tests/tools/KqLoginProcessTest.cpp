// kqlogin from outside: what it writes, what its exit code says, what it leaves behind.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

#include <gtest/gtest.h>

#include "tools/Site.h"

namespace kq {
namespace {

std::string IdIn(const std::string& line) {
    return line.substr(line.rfind(' ') + 1);
}

std::string FilesBelow(const std::string& folder) {
    std::string contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        contents.append(std::istreambuf_iterator<char>(file), {});
    }
    return contents;
}

TEST(KqLogin, LogsInRegistersAndSendsAMessage) {
    Site site;
    const auto login = site.LogIn({"--register", "--send", "Hello from ann", "--wait"});
    login->AwaitLine("LoginState kqaslsSystemLogin");
    const std::string session = IdIn(login->AwaitLine("SessionID "));
    login->AwaitLine("LoginState kqaslsServerLogin");
    site.AppServer().AwaitLine("Connected session=" + session + " user=ann");
    const std::string line = site.AppServer().AwaitLine("ReceivedData session=" + session);
    EXPECT_TRUE(line.ends_with(" Text=\"Hello from ann\"")) << line;
    login->Signal(SIGTERM);
    EXPECT_EQ(0, login->ExitCode()) << login->Errors();
    site.AppServer().AwaitLine("Disconnected session=" + session);
}

TEST(KqLogin, DeliversItsMessageAlsoWhenItEndsAtOnce) {
    Site site;
    const auto login = site.LogIn({"--register", "--send", std::string(20'000, 'x')});
    EXPECT_EQ(0, login->ExitCode()) << login->Errors();
    site.AppServer().AwaitLine("ReceivedData ");
    site.AppServer().AwaitLine("Disconnected ");
}

TEST(KqLogin, EndsWhenTheServerEndsTheSession) {
    Site site;
    const auto login = site.LogIn({"--register", "--wait"});
    const std::string session = IdIn(login->AwaitLine("SessionID "));
    login->AwaitLine("LoginState kqaslsServerLogin");
    site.AppServer().Write("disconnect " + session + "\n");
    login->AwaitLine("Disconnected by the application server");
    EXPECT_EQ(0, login->ExitCode());
}

TEST(KqLogin, WritesJsonBeforeItWaits) {
    Site site;
    const auto login = site.LogIn({"--register", "--wait", "--json"});
    const std::string json = login->AwaitLine("{\"result\":\"ok\",\"LoginState\":\"kqaslsServerLogin\"");
    EXPECT_NE(std::string::npos, json.find("\"LoginID\":\"ann\"")) << json;
    login->Signal(SIGINT);
    EXPECT_EQ(0, login->ExitCode());
    EXPECT_EQ(json + "\n", login->Output());
}

TEST(KqLogin, TellsAWrongPasswordByItsExitCode) {
    Site site;
    const auto login = site.LogIn({}, "Wr0ng-pas5word");
    EXPECT_EQ(5, login->ExitCode());
    EXPECT_EQ("kqlogin: 0x80040A0D ", login->Errors().substr(0, 20));
    EXPECT_EQ(login->Errors().size() - 1, login->Errors().find('\n'));
}

TEST(KqLogin, TellsALoginServerThatRefusesForNowFromAWrongPasswordByItsExitCode) {
    Site site;
    int code = 5;
    for (int attempt = 0; attempt < 10 && code == 5; ++attempt) {
        const auto login = site.LogIn({}, "Wr0ng-pas5word");
        code = login->ExitCode();
    }
    EXPECT_EQ(11, code);
}

TEST(KqLogin, TellsASettingsFileThatCannotBeWrittenByItsExitCode) {
    Site site;
    std::filesystem::create_directories(site.Zeb().Folder() + "/config");
    std::ofstream(site.Zeb().Folder() + "/config/HLXApps") << "a file in place of the folder";
    const auto login = site.LogIn({"--save-settings"});
    EXPECT_EQ(12, login->ExitCode());
    EXPECT_EQ("kqlogin: 0x800A004B The settings could not be stored in " + site.Zeb().Folder() +
                  "/config/HLXApps/AppSess_Demo.ini\n",
              login->Errors());
}

TEST(KqLogin, TellsAnInterfaceThatNoServerHasByItsExitCode) {
    Site site;
    const auto login = site.LogIn({"--interface", "9.9"});
    EXPECT_EQ(7, login->ExitCode());
    EXPECT_EQ("kqlogin: 0x80040A0B No servers available for this client.\n", login->Errors());
}

TEST(KqLogin, RemembersAServerInItsSettingsFile) {
    Site site;
    EXPECT_EQ(0, site.LogIn({"--save-settings", "--no-use-as-server"})->ExitCode());
    const auto login = RunLogin(site.Zeb().Folder(), {"--settings", "--app", "Demo", "--user", "ann"});
    EXPECT_EQ(0, login->ExitCode()) << login->Errors();
    EXPECT_EQ("LoginState kqaslsSystemLogin\n", login->Output().substr(0, 29));
}

// Without the milliseconds, which differ from run to run.
std::string Timeless(const std::string& trace) {
    return std::regex_replace(trace, std::regex(" [0-9]+ "), " ");
}

TEST(KqLogin, WritesEachStepOfItsLoginWithTrace) {
    Site site;
    const auto login = site.LogIn({"--register", "--trace"});
    EXPECT_EQ(0, login->ExitCode());
    EXPECT_EQ(
        "SystemLogin lsGetLoginInfo lsAttemptConnectZEB\n"
        "SystemLogin lsAttemptConnectZEB lsValidateClient\n"
        "SystemLogin lsValidateClient lsCheckValidZEBInterface\n"
        "SystemLogin lsCheckValidZEBInterface lsCheckValidInterface\n"
        "SystemLogin lsCheckValidInterface lsAttemptLogin\n"
        "SystemLogin lsAttemptLogin lsGetTranslation\n"
        "SystemLogin lsGetTranslation lsGetSessionInfo\n"
        "SystemLogin lsGetSessionInfo lsGetProfile\n"
        "SystemLogin lsGetProfile lsFinish\n"
        "SystemLogin lsFinish ended\n"
        "ServerLogin lsAttemptConnectServer lsAttemptRegister\n"
        "ServerLogin lsAttemptRegister lsFinish\n"
        "ServerLogin lsFinish ended\n",
        Timeless(login->Errors()));
}

TEST(KqLogin, TracesAFailureBeforeTheLineOfItsError) {
    Site site;
    const auto login = site.LogIn({"--trace"}, "Wr0ng-pas5word");
    EXPECT_EQ(5, login->ExitCode());
    const std::string errors = Timeless(login->Errors());
    EXPECT_NE(std::string::npos, errors.find("\nSystemLogin lsAttemptLogin 0x80040A0D\n"
                                             "SystemLogin lsFailed ended\nkqlogin: 0x80040A0D "))
        << errors;
}

TEST(KqLogin, TracesInJsonBesideAResultInJson) {
    Site site;
    const auto login = site.LogIn({"--json", "--trace"});
    EXPECT_EQ(0, login->ExitCode());
    EXPECT_EQ(0U, login->Output().find("{\"result\":\"ok\""));
    EXPECT_EQ(0U, login->Errors().find(R"({"Procedure":"SystemLogin","State":"lsGetLoginInfo",)"))
        << login->Errors();
    EXPECT_EQ(10, std::ranges::count(login->Errors(), '\n'));
}

TEST(KqLogin, WritesNoTraceUnlessItIsAsked) {
    Site site;
    EXPECT_EQ("", site.LogIn({})->Errors());
}

TEST(KqLogin, WritesTheTraceToTheFileOfItsSettings) {
    Site site;
    const std::string& folder = site.Zeb().Folder();
    std::filesystem::create_directories(folder + "/config/HLXApps");
    std::ofstream(folder + "/config/HLXApps/AppSess_Demo.ini")
        << "[Default]\nTraceFile=" << folder << "/login trace.txt\n";
    EXPECT_EQ(0, site.LogIn({})->ExitCode());
    std::ifstream file(folder + "/login trace.txt");
    std::string line;
    std::getline(file, line);
    EXPECT_TRUE(std::regex_match(
        line, std::regex("[-0-9]{10}T[:.0-9]{12}Z SystemLogin lsGetLoginInfo [0-9]+ lsAttemptConnectZEB")))
        << line;
}

TEST(KqLogin, NoProgramWritesThePasswordAnywhere) {
    Site site;
    const auto login = site.LogIn({"--register", "--send", "Hello", "--trace"});
    EXPECT_EQ(0, login->ExitCode());
    site.AppServer().AwaitLine("Disconnected ");
    site.AppServer().Signal(SIGTERM);
    site.Zeb().Process().Signal(SIGTERM);
    EXPECT_EQ(0, site.AppServer().ExitCode());
    EXPECT_EQ(0, site.Zeb().Process().ExitCode());
    std::string written = FilesBelow(site.Zeb().Folder());
    for (const ChildProcess* program : {login.get(), &site.AppServer(), &site.Zeb().Process()}) {
        EXPECT_NE("", program->Output());
        written += program->Output() + program->Errors();
    }
    EXPECT_EQ(std::string::npos, written.find(LoginServer::kPassword));
}

std::unique_ptr<ChildProcess> LogInAt(const DeadPort& port, const std::string& folder) {
    return RunLogin(folder, {"--address", "127.0.0.1", "--port", port.Number(), "--time-out", "300", "--app",
                             "Demo", "--user", "ann"});
}

TEST(KqLogin, TellsARefusedConnectionByItsExitCode) {
    const TemporaryFolder folder;
    const DeadPort port(DeadPort::Kind::Refusing);
    const auto login = LogInAt(port, folder.Path());
    EXPECT_EQ(3, login->ExitCode());
    EXPECT_EQ("kqlogin: 0x80040A06 Could not connect to login server: ", login->Errors().substr(0, 55));
}

TEST(KqLogin, TellsAMissingReplyByItsExitCode) {
    const TemporaryFolder folder;
    const DeadPort port(DeadPort::Kind::Silent);
    const auto login = LogInAt(port, folder.Path());
    EXPECT_EQ(4, login->ExitCode());
    EXPECT_EQ("kqlogin: 0x80040A07 ", login->Errors().substr(0, 20));
}

TEST(KqLogin, TellsASignalByItsExitCode) {
    const TemporaryFolder folder;
    const DeadPort port(DeadPort::Kind::Silent);
    const auto login = RunLogin(folder.Path(), {"--address", "127.0.0.1", "--port", port.Number(),
                                                "--time-out", "60000", "--app", "Demo", "--user", "ann"});
    port.AwaitConnection();
    login->Signal(SIGINT);
    EXPECT_EQ(130, login->ExitCode());
}

TEST(KqLogin, TellsAMissingServerByItsExitCode) {
    const TemporaryFolder folder;
    const auto login = RunLogin(folder.Path(), {"--settings", "--app", "Demo", "--user", "ann"});
    EXPECT_EQ(2, login->ExitCode());
    EXPECT_EQ("kqlogin: 0x80040A04 ", login->Errors().substr(0, 20));
}

TEST(KqLogin, NeedsAPasswordOnStandardInput) {
    const TemporaryFolder folder;
    const auto login =
        RunLogin(folder.Path(), {"--settings", "--app", "Demo", "--user", "ann"}, std::nullopt);
    EXPECT_EQ(2, login->ExitCode());
    EXPECT_EQ("kqlogin: there is no password on standard input\n", login->Errors());
}

}  // namespace
}  // namespace kq
