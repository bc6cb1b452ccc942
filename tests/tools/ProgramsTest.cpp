// What all programs have in common: help, version, mistakes, closed and full outputs.
#include <sstream>

#include <gtest/gtest.h>

#include "base/Version.h"
#include "tools/Loopback.h"
#include "tools/Site.h"

namespace kq {
namespace {

using Words = std::vector<std::string>;

// A shell runs the command with these redirections.
Words Redirected(const std::string& redirections, const Words& command) {
    Words shell{"/bin/sh", "-c", "exec \"$0\" \"$@\" " + redirections};
    shell.insert(shell.end(), command.begin(), command.end());
    return shell;
}

// A program that ran to its end without input.
std::unique_ptr<ChildProcess> Ended(const Words& command) {
    auto process = std::make_unique<ChildProcess>(command, Words{"LC_ALL=C"});
    process->EndInput();
    process->ExitCode();
    return process;
}

struct Program {
    std::string name;
    std::string file;
};

class EveryProgram : public testing::TestWithParam<Program> {
 protected:
    Words Command(const Words& arguments) const {
        Words command{GetParam().file};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }
    std::string Beginning() const { return GetParam().name + ": "; }
};

INSTANTIATE_TEST_SUITE_P(Programs, EveryProgram,
                         testing::Values(Program{"kqlogin", KQ_LOGIN}, Program{"kqappserver", KQ_APPSERVER},
                                         Program{"zebd", KQ_ZEBD}, Program{"zebctl", KQ_ZEBCTL}),
                         [](const auto& one) { return one.param.name; });

TEST_P(EveryProgram, ShowsItsVersion) {
    const auto version = Ended(Command({"--version"}));
    EXPECT_EQ(GetParam().name + " " + std::string(kVersion) + "\n", version->Output());
    EXPECT_EQ(0, version->ExitCode());
}

TEST_P(EveryProgram, ShowsHelpThatFitsATerminal) {
    const auto help = Ended(Command({"--help"}));
    EXPECT_EQ(0, help->ExitCode());
    EXPECT_EQ("", help->Errors());
    EXPECT_TRUE(help->Output().starts_with("Usage: " + GetParam().name + " ")) << help->Output();
    EXPECT_NE(std::string::npos, help->Output().find("\nExit codes:\n    0  "));
    std::istringstream lines(help->Output());
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 80U) << line;
}

TEST_P(EveryProgram, FailsWhenItsHelpOrVersionCannotBeWritten) {
    for (const auto* option : {"--help", "--version"}) {
        const auto program = Ended(Redirected(">/dev/full", Command({option})));
        EXPECT_EQ(1, program->ExitCode()) << option;
        EXPECT_EQ(Beginning() + "standard output cannot be written: No space left on device\n",
                  program->Errors());
    }
}

TEST_P(EveryProgram, SaysInOneLineWhatIsMissingAndWhereTheHelpIs) {
    const auto program = Ended(Command({}));
    EXPECT_EQ(2, program->ExitCode());
    EXPECT_EQ("", program->Output());
    EXPECT_TRUE(program->Errors().starts_with(Beginning())) << program->Errors();
    EXPECT_TRUE(program->Errors().ends_with("(see " + GetParam().name + " --help)\n")) << program->Errors();
    EXPECT_EQ(program->Errors().size() - 1, program->Errors().find('\n'));
}

TEST_P(EveryProgram, NamesAnOptionThatItDoesNotKnow) {
    const auto program = Ended(Command({"--colour", "red"}));
    EXPECT_EQ(2, program->ExitCode());
    EXPECT_EQ(Beginning() + "unknown option --colour (see " + GetParam().name + " --help)\n",
              program->Errors());
}

// --- Numbers, each with a value below its range, one above it, and the range.

struct Number {
    Words command;  // up to the option
    std::string option;
    std::string least;
    std::string most;
};

class EveryNumber : public testing::TestWithParam<Number> {
 protected:
    static void ExpectRefused(const std::string& value) {
        Words command = GetParam().command;
        command.push_back(GetParam().option);
        command.push_back(value);
        const auto program = Ended(command);
        EXPECT_EQ(2, program->ExitCode()) << value;
        EXPECT_NE(std::string::npos,
                  program->Errors().find(": " + GetParam().option + ": must be a whole number from " +
                                         GetParam().least + " to " + GetParam().most))
            << program->Errors();
    }
};

const Words kLogin{KQ_LOGIN, "--app", "Demo", "--user", "ann"};
const Words kServer{KQ_APPSERVER, "--app", "Demo"};
const Words kZebd{KQ_ZEBD, "--data", "none"};
const Words kAdd{KQ_ZEBCTL, "user", "add", "ann", "--data", "none"};

INSTANTIATE_TEST_SUITE_P(
    Options, EveryNumber,
    testing::Values(
        Number{kLogin, "--port", "1", "65535"}, Number{kLogin, "--time-out", "1", "2147483647"},
        Number{kLogin, "--restrict-port", "1", "65535"}, Number{kServer, "--port", "0", "65535"},
        Number{kServer, "--bus-port", "1", "65535"}, Number{kServer, "--info-interval", "0", "2147483"},
        Number{kServer, "--run-for", "0", "2147483"}, Number{kZebd, "--port", "0", "65535"},
        Number{kZebd, "--bus-port", "0", "65535"}, Number{kZebd, "--register-time", "1", "86400"},
        Number{kZebd, "--max-connections", "1", "100000"}, Number{kZebd, "--max-request", "4", "16384"},
        Number{kZebd, "--password-threads", "1", "64"}, Number{kZebd, "--password-queue", "0", "10000"},
        Number{kZebd, "--password-passes", "1", "16"}, Number{kZebd, "--password-memory", "1", "1024"},
        Number{kAdd, "--max-sessions", "0", "2147483647"}, Number{kAdd, "--language", "1", "2147483647"}),
    [](const auto& one) { return "Number" + std::to_string(one.index); });

TEST_P(EveryNumber, OutsideItsRangeIsRefusedWithTheRange) {
    ExpectRefused(std::to_string(std::stoll(GetParam().least) - 1));
    ExpectRefused(std::to_string(std::stoll(GetParam().most) + 1));
    ExpectRefused("1" + std::string(308, '0'));
    ExpectRefused("-1" + std::string(308, '0'));
    ExpectRefused("1.5");
    ExpectRefused("");
}

TEST_P(EveryNumber, HasItsRangeInTheHelp) {
    const auto& command = GetParam().command;
    Words help(command.begin(), command.begin() + (command.front() == KQ_ZEBCTL ? 3 : 1));
    help.emplace_back("--help");
    std::string text = Ended(help)->Output();
    const auto option = text.find("  " + GetParam().option + " NUMBER");
    ASSERT_NE(std::string::npos, option) << text;
    text = text.substr(option, text.find("\n  --", option) - option);
    for (auto gap = text.find("\n "); gap != std::string::npos; gap = text.find("\n "))
        text.erase(gap, text.find_first_not_of(' ', gap + 1) - gap - 1);
    for (auto& c : text) {
        if (c == '\n') c = ' ';
    }
    EXPECT_NE(std::string::npos, text.find(GetParam().least + " to " + GetParam().most)) << text;
}

// --- Outputs that are full, and descriptors that are closed.

TEST(FullOutput, FailsALoginThatCouldNotBeReported) {
    Site site;
    for (const auto* form : {"--register", "--json"}) {
        const auto login = std::make_unique<ChildProcess>(
            Redirected(">/dev/full", {KQ_LOGIN, "--address", "127.0.0.1", "--port", site.Zeb().Port(),
                                      "--app", "Demo", "--user", "ann", form}));
        login->Write(std::string(LoginServer::kPassword) + "\n");
        EXPECT_EQ(1, login->ExitCode());
        EXPECT_EQ("kqlogin: standard output cannot be written: No space left on device\n", login->Errors());
    }
}

TEST(FullOutput, FailsAListOfUsers) {
    const TemporaryFolder folder;
    EXPECT_EQ(0, Ended({KQ_ZEBCTL, "init", "--data", folder.Path() + "/zeb"})->ExitCode());
    const auto list =
        Ended(Redirected(">/dev/full", {KQ_ZEBCTL, "user", "list", "--data", folder.Path() + "/zeb"}));
    EXPECT_EQ(1, list->ExitCode());
    EXPECT_EQ("zebctl: standard output cannot be written: No space left on device\n", list->Errors());
}

TEST(FullOutput, LetsNoServerStartThatCannotSayWhereItListens) {
    const TemporaryFolder folder;
    EXPECT_EQ(0, Ended({KQ_ZEBCTL, "init", "--data", folder.Path() + "/zeb"})->ExitCode());
    const auto zebd = Ended(Redirected(
        ">/dev/full", {KQ_ZEBD, "--data", folder.Path() + "/zeb", "--port", "0", "--bus-port", "0"}));
    EXPECT_EQ(1, zebd->ExitCode());
    EXPECT_TRUE(
        zebd->Errors().ends_with("zebd: standard output cannot be written: No space left on device\n"))
        << zebd->Errors();
    const auto server = Ended(Redirected(">/dev/full", {KQ_APPSERVER, "--app", "Demo", "--bus-port", "1"}));
    EXPECT_EQ(1, server->ExitCode());
    EXPECT_EQ("kqappserver: standard output cannot be written: No space left on device\n", server->Errors());
}

TEST(ClosedDescriptors, DoNotKeepALoginFromEnding) {
    const auto login = Ended(Redirected("<&- >&- 2>&-", {KQ_LOGIN, "--address", "127.0.0.1", "--port", "1",
                                                         "--app", "Demo", "--user", "ann"}));
    EXPECT_EQ(2, login->ExitCode());
}

TEST(ClosedDescriptors, DoNotKeepAnAppServerFromRunning) {
    const auto server = Ended(Redirected(
        "<&- >&- 2>&-", {KQ_APPSERVER, "--app", "Demo", "--bus-port", "1", "--run-for", "0", "--commands"}));
    EXPECT_EQ(0, server->ExitCode());
}

TEST(ClosedDescriptors, DoNotKeepALoginServerFromServing) {
    const TemporaryFolder folder;
    const std::string data = folder.Path() + "/zeb";
    EXPECT_EQ(0, Ended({KQ_ZEBCTL, "init", "--data", data})->ExitCode());
    const std::string port = FreePort();
    ChildProcess zebd(
        Redirected("<&- >&- 2>&-", {KQ_ZEBD, "--data", data, "--port", port, "--bus-port", "0"}));
    EXPECT_TRUE(AwaitListener(port));
    const auto login =
        RunLogin(folder.Path(), {"--address", "127.0.0.1", "--port", port, "--app", "None", "--user", "ann"});
    EXPECT_EQ(7, login->ExitCode()) << login->Errors();
    zebd.Signal(SIGTERM);
    EXPECT_EQ(0, zebd.ExitCode());
}

}  // namespace
}  // namespace kq
