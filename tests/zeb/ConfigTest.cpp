// The three sources of the configuration and the sentences about mistakes in them.
#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "zeb/Config.h"
#include "zeb/TemporaryFolder.h"

namespace kq::zeb {
namespace {

std::string WhyNot(std::string_view text) {
    Config config;
    try {
        ApplyFileText(text, "zebd.toml", config);
    } catch (const Error& error) {
        return error.Description();
    }
    return {};
}

TEST(ZebConfig, AFileSetsTextsAndNumbers) {
    Config config;
    ApplyFileText("data = '/var/lib/zebd'\nport = 0\nlog_level = 'debug'\n", "zebd.toml", config);
    EXPECT_EQ(config.data, "/var/lib/zebd");
    EXPECT_EQ(config.port, 0);
    EXPECT_EQ(config.log_level, "debug");
    EXPECT_EQ(config.bus_port, Config().bus_port);
}

TEST(ZebConfig, AnUnknownKeyIsNamedWithFileAndLine) {
    EXPECT_EQ(WhyNot("port = 1\n\ncolour = 'red'\n"), "zebd.toml:3: unknown key \"colour\"");
}

TEST(ZebConfig, AnUnknownTableIsNamedWithFileAndLine) {
    EXPECT_EQ(WhyNot("\n[bus]\nport = 1\n"), "zebd.toml:2: unknown key \"bus\"");
}

TEST(ZebConfig, AWrongValueIsNamedWithFileAndLine) {
    EXPECT_EQ(WhyNot("port = 70000"), "zebd.toml:1: \"port\": must be a whole number from 0 to 65535");
    EXPECT_EQ(WhyNot("\nport = true"), "zebd.toml:2: \"port\" must be a text or a whole number");
    EXPECT_EQ(WhyNot("log_level = 'loud'"),
              "zebd.toml:1: \"log_level\": must be one of trace|debug|info|warn|error|off");
}

TEST(ZebConfig, AMistakeInTheSyntaxIsNamedWithFileAndLine) {
    EXPECT_EQ(WhyNot("port = 1\nbus port = 2\n").rfind("zebd.toml:2: ", 0), 0U);
}

TEST(ZebConfig, AFileThatIsNotThereIsNamed) {
    const TemporaryFolder folder;
    Config config;
    EXPECT_THROW(ApplyFile(folder.Path("none.toml"), config), Error);
}

TEST(ZebConfig, TheEnvironmentSetsWhatItNames) {
    Config config;
    ApplyEnvironment([](const char* name) { return std::string(name) == "ZEBD_BUS_PORT" ? "7" : nullptr; },
                     config);
    EXPECT_EQ(config.bus_port, 7);
    EXPECT_EQ(config.port, Config().port);
}

TEST(ZebConfig, AMistakeInTheEnvironmentNamesTheVariable) {
    Config config;
    try {
        ApplyEnvironment([](const char* name) { return std::string(name) == "ZEBD_PORT" ? "x" : nullptr; },
                         config);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Description(), "ZEBD_PORT: must be a whole number from 0 to 65535");
    }
}

TEST(ZebConfig, AMistakeOnTheCommandLineNamesTheFlag) {
    Config config;
    try {
        ApplyFlags({{"bus_port", "-1"}}, config);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Description(), "--bus-port: must be a whole number from 0 to 65535");
    }
}

TEST(ZebConfig, EverySettingCanBeSetByItsFlag) {
    for (const auto& setting : ConfigSettings()) {
        Config config;
        const bool choice = std::holds_alternative<Setting::Choice>(setting.value);
        EXPECT_NO_THROW(ApplyFlags({{std::string(setting.name), choice ? "error" : "8"}}, config))
            << setting.name;
    }
}

}  // namespace
}  // namespace kq::zeb
