#include <initializer_list>
#include <vector>

#include <gtest/gtest.h>

#include "tools/kqlogin/LoginOptions.h"

namespace kq {
namespace {

// The parsed command line, and what was written where.
struct Parsed {
    std::optional<LoginOptions> options;
    int exit_code = -1;
    std::string output;
    std::string errors;
};

Parsed Parse(const std::vector<const char*>& arguments) {
    std::vector<const char*> argv{"kqlogin"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    Parsed parsed;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    parsed.options = ParseLoginOptions(static_cast<int>(argv.size()), argv.data(), parsed.exit_code);
    parsed.output = testing::internal::GetCapturedStdout();
    parsed.errors = testing::internal::GetCapturedStderr();
    return parsed;
}

Parsed ParseWithServer(std::initializer_list<const char*> more) {
    std::vector<const char*> all{"--address", "zeb", "--port", "7710", "--app", "Demo", "--user", "ann"};
    all.insert(all.end(), more);
    std::vector<const char*> argv{"kqlogin"};
    argv.insert(argv.end(), all.begin(), all.end());
    Parsed parsed;
    testing::internal::CaptureStderr();
    parsed.options = ParseLoginOptions(static_cast<int>(argv.size()), argv.data(), parsed.exit_code);
    parsed.errors = testing::internal::GetCapturedStderr();
    return parsed;
}

void ExpectMistake(const Parsed& parsed, const std::string& sentence) {
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(2, parsed.exit_code);
    EXPECT_EQ("kqlogin: " + sentence + " (see kqlogin --help)\n", parsed.errors);
}

TEST(LoginOptions, NeedNoMoreThanServerApplicationAndUser) {
    const auto parsed = ParseWithServer({});
    ASSERT_TRUE(parsed.options) << parsed.errors;
    EXPECT_EQ("zeb", parsed.options->address);
    EXPECT_EQ(7710, parsed.options->port);
    EXPECT_EQ(10'000, parsed.options->time_out);
    EXPECT_EQ("1.0", parsed.options->interface_version);
    EXPECT_FALSE(parsed.options->use_as_server);
    EXPECT_FALSE(parsed.options->register_session);
}

TEST(LoginOptions, TheApplicationServerAsLoginServerIsLeftOutGivenOrDenied) {
    EXPECT_EQ(std::optional(true), ParseWithServer({"--use-as-server"}).options->use_as_server);
    EXPECT_EQ(std::optional(false), ParseWithServer({"--no-use-as-server"}).options->use_as_server);
}

TEST(LoginOptions, TheSettingsFileStandsInForAnAddress) {
    const auto parsed = Parse({"--settings", "--app", "Demo", "--user", "ann"});
    ASSERT_TRUE(parsed.options) << parsed.errors;
    EXPECT_TRUE(parsed.options->address.empty());
}

TEST(LoginOptions, WithoutAddressAndSettingsAreAMistake) {
    ExpectMistake(Parse({"--app", "Demo", "--user", "ann"}), "--address or --settings is required");
}

TEST(LoginOptions, ATerminalStandsInForServerAndUser) {
    const auto parsed = Parse({"--tty", "--app", "Demo", "--register"});
    ASSERT_TRUE(parsed.options) << parsed.errors;
    EXPECT_TRUE(parsed.options->tty);
    EXPECT_FALSE(ParseWithServer({}).options->tty);
}

TEST(LoginOptions, WhatTheTerminalAsksForIsNoOptionBesides) {
    for (const auto& option : std::vector<std::vector<const char*>>{{"--user", "ann"},
                                                                    {"--address", "zeb"},
                                                                    {"--port", "7710"},
                                                                    {"--time-out", "10000"},
                                                                    {"--settings"},
                                                                    {"--save-settings"}}) {
        std::vector<const char*> all{"--tty", "--app", "Demo"};
        all.insert(all.end(), option.begin(), option.end());
        const auto parsed = Parse(all);
        EXPECT_EQ(2, parsed.exit_code) << option.front();
        EXPECT_NE(std::string::npos, parsed.errors.find(option.front())) << parsed.errors;
    }
}

TEST(LoginOptions, WithoutAUserAreAMistake) {
    ExpectMistake(Parse({"--address", "zeb", "--port", "7710", "--app", "Demo"}), "--user is required");
}

TEST(LoginOptions, AnAddressAndTheSettingsFileExcludeEachOther) {
    ExpectMistake(ParseWithServer({"--settings"}), "--address and --settings exclude each other");
}

TEST(LoginOptions, AnAddressNeedsAPort) {
    ExpectMistake(Parse({"--address", "zeb", "--app", "Demo", "--user", "ann"}), "--address needs --port");
}

TEST(LoginOptions, SendingAndWaitingNeedARegistration) {
    ExpectMistake(ParseWithServer({"--send", "Hello"}), "--send needs --register");
    ExpectMistake(ParseWithServer({"--wait"}), "--wait needs --register");
}

TEST(LoginOptions, AnEmptyTextCanBeSent) {
    EXPECT_EQ(std::optional<std::string>(""), ParseWithServer({"--register", "--send", ""}).options->send);
}

TEST(LoginOptions, AnEmptyUserIsAMistake) {
    const auto parsed = Parse({"--address", "zeb", "--port", "1", "--app", "Demo", "--user", ""});
    EXPECT_EQ(2, parsed.exit_code);
    EXPECT_FALSE(parsed.options);
}

TEST(LoginOptions, APortOutsideItsRangeIsAMistake) {
    for (const char* port : {"0", "65536", "-1", "x", "99999999999"}) {
        const auto parsed = Parse({"--address", "zeb", "--port", port, "--app", "Demo", "--user", "ann"});
        EXPECT_EQ(2, parsed.exit_code) << port;
        EXPECT_FALSE(parsed.options) << port;
    }
}

TEST(LoginOptions, AnUnknownOptionIsAMistakeOnOneLine) {
    const auto parsed = ParseWithServer({"--password", "secret"});
    EXPECT_EQ(2, parsed.exit_code);
    EXPECT_EQ(parsed.errors.size() - 1, parsed.errors.find('\n'));
}

TEST(LoginOptions, TheHelpListsTheExitCodes) {
    const auto parsed = Parse({"--help"});
    EXPECT_EQ(0, parsed.exit_code);
    EXPECT_FALSE(parsed.options);
    EXPECT_NE(std::string::npos, parsed.output.find("    3  no connection"));
}

TEST(LoginOptions, TheHelpSaysWhereTheSettingsFileIs) {
    EXPECT_NE(std::string::npos, Parse({"--help"}).output.find("/HLXApps/AppSess_APP.ini"));
}

TEST(LoginOptions, TheVersionIsOneLine) {
    const auto parsed = Parse({"--version"});
    EXPECT_EQ(0, parsed.exit_code);
    EXPECT_EQ("kqlogin 1.", parsed.output.substr(0, 10));
}

}  // namespace
}  // namespace kq
