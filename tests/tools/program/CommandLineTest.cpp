#include <vector>

#include <gtest/gtest.h>

#include "base/Version.h"
#include "tools/program/CommandLine.h"

namespace kq {
namespace {

// A program with an option of every kind and two levels of commands.
class CommandLineOfAProgram : public testing::Test {
 protected:
    CommandLineOfAProgram() {
        PrepareCommandLine(app_);
        app_.footer(ExitCodeTable({{0, "done"}, {2, std::string(100, 'x') + " end"}}));
        app_.add_option("--port", port_, "The port to listen on")
            ->check(InRange(kPort))
            ->capture_default_str();
        app_.add_option("--name", name_, "A name")->required();
        app_.add_flag("--quiet", quiet_, "Says nothing");
        app_.require_subcommand(1);
        auto* const user = app_.add_subcommand("user", "The users");
        user->require_subcommand(1);
        user->add_subcommand("add", "Adds a user")->add_option("LOGIN", login_, "login id")->required();
        user->add_subcommand("list", "Lists the users");
    }
    // What the program writes, to both streams, and its exit code; "" and -1 when it goes on.
    std::string Run(const std::vector<const char*>& arguments) {
        std::vector<const char*> argv{"prog"};
        argv.insert(argv.end(), arguments.begin(), arguments.end());
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const auto code = ParseCommandLine(app_, static_cast<int>(argv.size()), argv.data());
        const auto errors = testing::internal::GetCapturedStderr();
        exit_code_ = code.value_or(-1);
        return testing::internal::GetCapturedStdout() + errors;
    }
    void ExpectMistake(const std::vector<const char*>& arguments, const std::string& description,
                       const std::string& command = "prog") {
        EXPECT_EQ(Run(arguments), "prog: " + description + " (see " + command + " --help)\n");
        EXPECT_EQ(exit_code_, 2);
    }

    CLI::App app_{"A program that lives in this test alone, and whose description goes over one line.",
                  "prog"};
    int exit_code_ = -1;
    std::int32_t port_ = 7700;
    std::string name_;
    std::string login_;
    bool quiet_ = false;
};

TEST_F(CommandLineOfAProgram, SetsWhatItsOptionsName) {
    EXPECT_EQ(Run({"--port", "1", "--name", "x", "user", "add", "ann"}), "");
    EXPECT_EQ(exit_code_, -1);
    EXPECT_EQ(port_, 1);
    EXPECT_EQ(login_, "ann");
}

TEST_F(CommandLineOfAProgram, ShowsItsHelp) {
    EXPECT_EQ(Run({"--help"}),
              "Usage: prog --name TEXT COMMAND [OPTIONS]\n"
              "\n"
              "A program that lives in this test alone, and whose description goes over one\n"
              "line.\n"
              "\n"
              "Commands:\n"
              "  user add LOGIN             Adds a user\n"
              "  user list                  Lists the users\n"
              "\n"
              "Options:\n"
              "  -h, --help                 Show this help and exit\n"
              "  --version                  Show the version and exit\n"
              "  --port NUMBER              The port to listen on (1 to 65535; default: 7700)\n"
              "  --name TEXT                A name (required)\n"
              "  --quiet                    Says nothing\n"
              "\n"
              "Exit codes:\n"
              "    0  done\n"
              "    2  " +
                  std::string(100, 'x') + "\n       end\n");
    EXPECT_EQ(exit_code_, 0);
}

TEST_F(CommandLineOfAProgram, FillsEightyColumns) {
    const std::string first(40, 'a');
    app_.footer(first + " " + std::string(39, 'b') + " c\n" + first + " " + std::string(40, 'd'));
    EXPECT_TRUE(Run({"--help"})
                    .ends_with("\n" + first + " " + std::string(39, 'b') + "\nc\n" + first + "\n" +
                               std::string(40, 'd') + "\n"));
}

TEST_F(CommandLineOfAProgram, ShowsTheHelpOfACommand) {
    EXPECT_EQ(Run({"user", "add", "--help"}),
              "Usage: prog user add LOGIN [OPTIONS]\n"
              "\n"
              "Adds a user\n"
              "\n"
              "Arguments:\n"
              "  LOGIN                      Login id (required)\n"
              "\n"
              "Options:\n"
              "  -h, --help                 Show this help and exit\n");
}

TEST_F(CommandLineOfAProgram, ShowsItsVersion) {
    EXPECT_EQ(Run({"--version"}), "prog " + std::string(kVersion) + "\n");
    EXPECT_EQ(exit_code_, 0);
}

TEST_F(CommandLineOfAProgram, NamesTheRangeOfANumber) {
    for (const auto* port : {"0", "65536", "-1", "x", "", "1.5", "99999999999"})
        ExpectMistake({"--port", port}, "--port: must be a whole number from 1 to 65535");
}

TEST_F(CommandLineOfAProgram, NamesWhatIsMissing) {
    ExpectMistake({"user", "list"}, "--name is required", "prog user list");
    ExpectMistake({"--name", "x"}, "a command is required: user");
    ExpectMistake({"--name", "x", "user"}, "a command is required: add, list", "prog user");
    ExpectMistake({"--name", "x", "user", "add"}, "LOGIN is required", "prog user add");
    ExpectMistake({"--name"}, "--name needs a value");
}

TEST_F(CommandLineOfAProgram, NamesWhatItDoesNotKnowButNoValue) {
    ExpectMistake({"--pass=secret"}, "unknown option --pass");
    ExpectMistake({"--pass", "secret"}, "unknown option --pass");
    ExpectMistake({"usr"}, "unknown argument usr");
    ExpectMistake({"--name", "x", "user", "add", "ann", "bob"}, "unknown argument bob", "prog user add");
}

TEST_F(CommandLineOfAProgram, NamesAnOptionThatIsGivenTwice) {
    ExpectMistake({"--name", "x", "--name", "y", "user", "list"}, "--name is given more than once",
                  "prog user list");
}

}  // namespace
}  // namespace kq
