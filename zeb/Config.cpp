// The settings and their three sources.
#include "zeb/Config.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <sstream>

#include <toml++/toml.h>

#include <kqappsession/Error.h>

#include "base/Convert.h"

namespace kq::zeb {
namespace {

using Text = Setting::Text;
using Number = Setting::Number;
using Choice = Setting::Choice;

constexpr std::array<Setting, 14> kSettings = {{
    {"data", "folder with the database, made by 'zebctl init'", Text{&Config::data}},
    {"listen", "address to listen on for clients; empty: all", Text{&Config::listen}},
    {"port", "port for clients; 0: a free one", Number{&Config::port, 0, 65535}},
    {"bus_address", "address to listen on for the bus; empty: all", Text{&Config::bus_address}},
    {"bus_port", "port for the bus; 0: a free one", Number{&Config::bus_port, 0, 65535}},
    {"bus_key_file", "file with the key of the bus, made by 'zebctl bus-key'; without one: loopback only",
     Text{&Config::bus_key_file}},
    {"log_level", "trace, debug, info, warn, error or off",
     Choice{&Config::log_level, "trace|debug|info|warn|error|off"}},
    {"register_time", "seconds from a login to its registration", Number{&Config::register_time, 1, 86'400}},
    {"max_connections", "connections of clients at once", Number{&Config::max_connections, 1, 100'000}},
    {"max_request", "largest request in KiB", Number{&Config::max_request, 4, 16'384}},
    {"password_threads", "threads that check passwords", Number{&Config::password_threads, 1, 64}},
    {"password_queue", "password checks that may wait", Number{&Config::password_queue, 0, 10'000}},
    {"password_passes", "argon2id passes of new hashes", Number{&Config::password_passes, 1, 16}},
    {"password_memory", "argon2id memory of new hashes in MiB", Number{&Config::password_memory, 1, 1'024}},
}};

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd", where + ": " + what);
}

struct Setter {
    const std::string& where;
    const std::string& text;
    Config& config;

    void operator()(const Text& value) const { config.*value.member = text; }

    void operator()(const Number& value) const {
        std::int32_t number = 0;
        const char* end = text.data() + text.size();
        const auto result = std::from_chars(text.data(), end, number);
        if (result.ec != std::errc() || result.ptr != end || number < value.least || number > value.most)
            Fail(where, "must be a whole number from " + std::to_string(value.least) + " to " +
                            std::to_string(value.most));
        config.*value.member = number;
    }

    void operator()(const Choice& value) const {
        const auto choices = Split(value.choices, '|');
        if (std::find(choices.begin(), choices.end(), text) == choices.end())
            Fail(where, "must be one of " + std::string(value.choices));
        config.*value.member = text;
    }
};

void Set(const Setting& setting, const std::string& where, const std::string& text, Config& config) {
    std::visit(Setter{where, text, config}, setting.value);
}

const Setting* FindSetting(std::string_view name) {
    const auto found = std::find_if(kSettings.begin(), kSettings.end(),
                                    [&](const Setting& setting) { return setting.name == name; });
    return found == kSettings.end() ? nullptr : &*found;
}

}  // namespace

std::span<const Setting> ConfigSettings() {
    return kSettings;
}

void ApplyFile(const std::string& path, Config& config) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) Fail(path, "cannot be read");
    ApplyFileText(text.str(), path, config);
}

void ApplyFileText(std::string_view text, const std::string& path, Config& config) {
    const auto place = [&](const toml::source_region& region) {
        return path + ":" + std::to_string(region.begin.line);
    };
    toml::table table;
    try {
        table = toml::parse(text, path);
    } catch (const toml::parse_error& error) {
        Fail(place(error.source()), std::string(error.description()));
    }
    for (const auto& [key, node] : table) {
        const auto where = place(key.source());
        const Setting* setting = FindSetting(key.str());
        if (!setting) Fail(where, "unknown key \"" + std::string(key.str()) + "\"");
        std::string value;
        if (const auto* string = node.as_string()) {
            value = string->get();
        } else if (const auto* number = node.as_integer()) {
            value = std::to_string(number->get());
        } else {
            Fail(where, "\"" + std::string(key.str()) + "\" must be a text or a whole number");
        }
        Set(*setting, where + ": \"" + std::string(key.str()) + "\"", value, config);
    }
}

void ApplyEnvironment(const std::function<const char*(const char*)>& read, Config& config) {
    for (const auto& setting : kSettings) {
        const auto variable = VariableOf(setting.name);
        if (const char* value = read(variable.c_str())) Set(setting, variable, value, config);
    }
}

void ApplyFlags(const std::map<std::string, std::string>& flags, Config& config) {
    for (const auto& [name, value] : flags) {
        const Setting* setting = FindSetting(name);
        if (!setting) Fail(FlagOf(name), "unknown");
        Set(*setting, FlagOf(name), value, config);
    }
}

std::string FlagOf(std::string_view setting) {
    std::string flag = "--" + std::string(setting);
    std::replace(flag.begin(), flag.end(), '_', '-');
    return flag;
}

std::string VariableOf(std::string_view setting) {
    return "ZEBD_" + UpperCase(setting);
}

}  // namespace kq::zeb
