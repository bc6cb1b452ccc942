// The three sources of the configuration and the sentences about mistakes in them.
#include <fstream>
#include <functional>
#include <map>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zeb/Config.h"
#include "zeb/ExpectError.h"
#include "zeb/TemporaryFolder.h"

namespace kq::zeb {
namespace {

void ExpectMistake(const std::function<void()>& apply, const std::string& description) {
    ExpectError(apply, NumberOf(RuntimeError::InvalidProcedureCall), "zebd", description);
}

void ExpectMistakeInFile(std::string_view text, const std::string& description) {
    Config config;
    ExpectMistake([&] { ApplyFileText(text, "zebd.toml", config); }, description);
}

void Apply(std::vector<const char*> environment, Config& config) {
    environment.push_back(nullptr);
    ApplyEnvironment(environment.data(), config);
}

void ExpectMistakeInEnvironment(const char* entry, const std::string& description) {
    Config config;
    ExpectMistake([&] { Apply({entry}, config); }, description);
}

TEST(ZebConfig, AFileSetsTextsAndNumbers) {
    Config config;
    ApplyFileText("data = '/var/lib/zebd'\nport = 0\nlog_level = 'debug'\n", "zebd.toml", config);
    EXPECT_EQ(config.data, "/var/lib/zebd");
    EXPECT_EQ(config.port, 0);
    EXPECT_EQ(config.log_level, "debug");
    EXPECT_EQ(config.bus_port, Config().bus_port);
}

TEST(ZebConfig, AFileMayBeEmpty) {
    const TemporaryFolder folder;
    std::ofstream(folder.Path("zebd.toml"));
    Config config;
    EXPECT_NO_THROW(ApplyFile(folder.Path("zebd.toml"), config));
}

TEST(ZebConfig, AnUnknownKeyIsNamedWithFileAndLine) {
    ExpectMistakeInFile("port = 1\n\ncolour = 'red'\n", "zebd.toml:3: unknown key \"colour\"");
}

TEST(ZebConfig, AnUnknownKeyThatIsSimilarToOneIsExplained) {
    ExpectMistakeInFile("bus_prot = 1", "zebd.toml:1: unknown key \"bus_prot\"; did you mean \"bus_port\"?");
    ExpectMistakeInFile("bus-port = 1", "zebd.toml:1: unknown key \"bus-port\"; did you mean \"bus_port\"?");
    ExpectMistakeInFile("lissten = ''", "zebd.toml:1: unknown key \"lissten\"; did you mean \"listen\"?");
}

TEST(ZebConfig, AnUnknownTableIsNamedWithFileAndLine) {
    ExpectMistakeInFile("\n[tables]\nport = 1\n", "zebd.toml:2: unknown key \"tables\"");
}

TEST(ZebConfig, AWrongValueIsNamedWithFileAndLine) {
    ExpectMistakeInFile("port = 70000", "zebd.toml:1: \"port\": must be a whole number from 0 to 65535");
    ExpectMistakeInFile("port = ''", "zebd.toml:1: \"port\": must be a whole number from 0 to 65535");
    ExpectMistakeInFile("\nport = true", "zebd.toml:2: \"port\" must be a text or a whole number");
    ExpectMistakeInFile("port = 1.5", "zebd.toml:1: \"port\" must be a text or a whole number");
    ExpectMistakeInFile("log_level = 'loud'",
                        "zebd.toml:1: \"log_level\": must be one of trace|debug|info|warn|error|off");
    ExpectMistakeInFile("data = \"a\\u0000b\"", "zebd.toml:1: \"data\": must not contain a zero character");
}

TEST(ZebConfig, AKeyThatIsThereTwiceIsNamedWithFileAndLine) {
    Config config;
    try {
        ApplyFileText("port = 1\nport = 2\n", "zebd.toml", config);
        ADD_FAILURE() << "nothing was raised";
    } catch (const Error& error) {
        EXPECT_THAT(error.Description(), testing::StartsWith("zebd.toml:2: "));
    }
}

TEST(ZebConfig, AMistakeInTheSyntaxIsNamedWithFileAndLine) {
    Config config;
    try {
        ApplyFileText("port = 1\nbus port = 2\n", "zebd.toml", config);
        ADD_FAILURE() << "nothing was raised";
    } catch (const Error& error) {
        EXPECT_THAT(error.Description(), testing::StartsWith("zebd.toml:2: "));
    }
}

TEST(ZebConfig, AFileThatCannotBeReadIsNamedWithTheReason) {
    const TemporaryFolder folder;
    Config config;
    ExpectMistake([&] { ApplyFile(folder.Path("none.toml"), config); },
                  folder.Path("none.toml") + ": cannot be read: No such file or directory");
    ExpectMistake([&] { ApplyFile(folder.Path(""), config); },
                  folder.Path("") + ": cannot be read: Is a directory");
}

TEST(ZebConfig, TheEnvironmentSetsWhatItNames) {
    Config config;
    Apply({"ZEBD_BUS_PORT=7", "HOME=/root", "ZEBD_DATA=a=b"}, config);
    EXPECT_EQ(config.bus_port, 7);
    EXPECT_EQ(config.data, "a=b");
    EXPECT_EQ(config.port, Config().port);
}

TEST(ZebConfig, AnEmptyVariableCountsAsNotSet) {
    Config config;
    Apply({"ZEBD_LISTEN=", "ZEBD_PORT=", "ZEBD_LOG_LEVEL="}, config);
    EXPECT_EQ(config.listen, "127.0.0.1");
    EXPECT_EQ(config.port, Config().port);
    EXPECT_EQ(config.log_level, "info");
}

TEST(ZebConfig, AMistakeInTheEnvironmentNamesTheVariable) {
    ExpectMistakeInEnvironment("ZEBD_PORT=x", "ZEBD_PORT: must be a whole number from 0 to 65535");
}

TEST(ZebConfig, AnUnknownVariableIsNamed) {
    ExpectMistakeInEnvironment("ZEBD_COLOUR=red", "ZEBD_COLOUR: unknown variable");
    ExpectMistakeInEnvironment("ZEBD_PROT=1", "ZEBD_PROT: unknown variable; did you mean ZEBD_PORT?");
    ExpectMistakeInEnvironment("ZEBD_port=1", "ZEBD_port: unknown variable; did you mean ZEBD_PORT?");
    ExpectMistakeInEnvironment("ZEBD_BUSPORT=",
                               "ZEBD_BUSPORT: unknown variable; did you mean ZEBD_BUS_PORT?");
}

TEST(ZebConfig, TheVariableThatNamesTheFileAndThoseOfOthersAreNoMistake) {
    Config config;
    EXPECT_NO_THROW(Apply({"ZEBD_CONFIG=/etc/zebd.toml", "ZEBDATA=x", "XZEBD_PROT=1"}, config));
}

TEST(ZebConfig, AMistakeOnTheCommandLineNamesTheFlag) {
    Config config;
    ExpectMistake(
        [&] {
            ApplyFlags({{"bus_port", "-1"}}, config);
        },
        "--bus-port: must be a whole number from 0 to 65535");
}

TEST(ZebConfig, EveryNumberHasARange) {
    for (const auto& setting : ConfigSettings()) {
        const auto* number = std::get_if<Setting::Number>(&setting.value);
        if (!number) continue;
        const std::string name(setting.name);
        const auto mistake = FlagOf(name) + ": must be a whole number from " + std::to_string(number->least) +
                             " to " + std::to_string(number->most);
        Config config;
        for (const auto value : {std::int64_t{number->least} - 1, std::int64_t{number->most} + 1})
            ExpectMistake([&] { ApplyFlags({{name, std::to_string(value)}}, config); }, mistake);
        for (const char* value : {"", " 8", "8x", "99999999999", "0x8"})
            ExpectMistake([&] { ApplyFlags({{name, value}}, config); }, mistake);
    }
}

struct Member {
    const char* setting;
    std::variant<std::string Config::*, std::int32_t Config::*> member;
};
const std::vector<Member> kMembers = {
    {"data", &Config::data},
    {"listen", &Config::listen},
    {"port", &Config::port},
    {"bus_address", &Config::bus_address},
    {"bus_port", &Config::bus_port},
    {"bus_key_file", &Config::bus_key_file},
    {"log_level", &Config::log_level},
    {"register_time", &Config::register_time},
    {"max_connections", &Config::max_connections},
    {"max_request", &Config::max_request},
    {"password_threads", &Config::password_threads},
    {"password_queue", &Config::password_queue},
    {"password_passes", &Config::password_passes},
    {"password_memory", &Config::password_memory},
};

using Values = std::map<std::string, std::string>;

// What a configuration holds, by setting.
Values ValuesOf(const Config& config) {
    Values values;
    for (const auto& [setting, member] : kMembers) {
        const auto* text = std::get_if<std::string Config::*>(&member);
        values[setting] =
            text ? config.**text : std::to_string(config.*std::get<std::int32_t Config::*>(member));
    }
    return values;
}

// Sets every setting in turn to a value that is not its default; that one has it then, the others theirs.
void ExpectEachSetBy(const std::function<void(const std::string&, const std::string&, Config&)>& set) {
    const auto defaults = ValuesOf(Config());
    EXPECT_EQ(ConfigSettings().size(), kMembers.size());
    for (const auto& setting : ConfigSettings()) {
        const std::string name(setting.name);
        const std::string value = std::holds_alternative<Setting::Choice>(setting.value) ? "error" : "8";
        Config config;
        set(name, value, config);
        auto expected = defaults;
        expected[name] = value;
        EXPECT_NE(expected, defaults) << name;
        EXPECT_EQ(ValuesOf(config), expected) << name;
    }
}

TEST(ZebConfig, EverySettingCanBeSetByItsFlag) {
    ExpectEachSetBy([](const std::string& name, const std::string& value, Config& config) {
        ApplyFlags({{name, value}}, config);
    });
}

TEST(ZebConfig, EverySettingCanBeSetByItsVariable) {
    ExpectEachSetBy([](const std::string& name, const std::string& value, Config& config) {
        const std::string entry = VariableOf(name) + "=" + value;
        Apply({entry.c_str()}, config);
    });
}

TEST(ZebConfig, EverySettingCanBeSetInTheFileAsATextAndNumbersAsNumbers) {
    ExpectEachSetBy([](const std::string& name, const std::string& value, Config& config) {
        ApplyFileText(name + " = '" + value + "'", "zebd.toml", config);
    });
    for (const auto& setting : ConfigSettings()) {
        const auto* number = std::get_if<Setting::Number>(&setting.value);
        if (number == nullptr) continue;
        Config config;
        ApplyFileText(std::string(setting.name) + " = 8", "zebd.toml", config);
        EXPECT_EQ(config.*number->member, 8) << setting.name;
    }
}

TEST(ZebConfig, EverySettingHasItsDefaultInTheHelp) {
    const auto defaults = ValuesOf(Config());
    for (const auto& setting : ConfigSettings())
        EXPECT_EQ(DefaultOf(setting), defaults.at(std::string(setting.name)));
}

TEST(ZebConfig, ALogLevelIsOneOfTheChoices) {
    for (const char* level : {"", "INFO", "inf", "info|warn", "|"}) {
        Config config;
        ExpectMistake(
            [&] {
                ApplyFlags({{"log_level", level}}, config);
            },
            "--log-level: must be one of trace|debug|info|warn|error|off");
        EXPECT_EQ(config.log_level, "info");
    }
}

TEST(ZebConfig, AnUnknownFlagIsNamed) {
    Config config;
    ExpectMistake([&] { ApplyFlags({{"bus_prot", "1"}}, config); }, "--bus-prot: unknown");
}

}  // namespace
}  // namespace kq::zeb
