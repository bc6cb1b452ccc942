// The configuration of zebd: one list of settings. Each of them may be in the configuration file (TOML), in
// the environment (ZEBD_ and the name in capitals) and on the command line (hyphens instead of underscores).
// The command line takes precedence over the environment, the environment over the file.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace kq::zeb {

struct Config {
    std::string data;
    std::string listen = "127.0.0.1";
    std::int32_t port = 7700;
    std::string bus_address = "127.0.0.1";
    std::int32_t bus_port = 7701;
    std::string bus_key_file;
    std::string log_level = "info";
    std::int32_t register_time = 600;  // seconds
    std::int32_t max_connections = 2'000;
    std::int32_t max_request = 1'024;  // KiB
    std::int32_t password_threads = 2;
    std::int32_t password_queue = 64;
    std::int32_t password_passes = 2;
    std::int32_t password_memory = 64;  // MiB
};

struct Setting {
    struct Text {
        std::string Config::*member;
    };
    struct Number {
        std::int32_t Config::*member;
        std::int32_t least;
        std::int32_t most;
    };
    struct Choice {
        std::string Config::*member;
        std::string_view choices;  // separated by |
    };
    std::string_view name;
    std::string_view help;
    std::variant<Text, Number, Choice> value;
};

std::span<const Setting> ConfigSettings();
// For the help: "NUMBER" or "TEXT"; the range, such as "1 to 64", empty for a text; the default, empty if
// there is none.
std::string TypeOf(const Setting& setting);
std::string RangeOf(const Setting& setting);
std::string DefaultOf(const Setting& setting);

// Each raises kq::Error. Its description is one line that says where the error is: "zebd.toml:3: unknown key
// \"colour\"", "ZEBD_PORT: must be a whole number from 0 to 65535", "--port: ...".
void ApplyFile(const std::string& path, Config& config);
void ApplyFileText(std::string_view text, const std::string& path, Config& config);
// `environment`: "NAME=value" each, null at the end, as `environ`. An empty variable counts as not set. A
// variable that begins with ZEBD_ and is neither a setting's nor kFileVariable is an error.
void ApplyEnvironment(const char* const* environment, Config& config);
// Names the configuration file. Its value is read by the program, not by ApplyEnvironment.
inline constexpr std::string_view kFileVariable = "ZEBD_CONFIG";
// By setting name.
void ApplyFlags(const std::map<std::string, std::string>& flags, Config& config);

// "bus_port" as a flag: "--bus-port"; as a variable: "ZEBD_BUS_PORT".
std::string FlagOf(std::string_view setting);
std::string VariableOf(std::string_view setting);

}  // namespace kq::zeb
