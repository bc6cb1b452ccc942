// The settings and their three sources.
#include "zeb/Config.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

#include <toml++/toml.h>

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "tools/program/WholeNumber.h"

namespace kq::zeb {
namespace {

using Text = Setting::Text;
using Number = Setting::Number;
using Choice = Setting::Choice;

constexpr std::array<Setting, 14> kSettings = {{
    {"data", "folder with the database, created by 'zebctl init'", Text{&Config::data}},
    {"listen", "address to listen on for clients; empty: all", Text{&Config::listen}},
    {"port", "port for clients; 0: a free one", Number{&Config::port, 0, 65535}},
    {"bus_address", "address to listen on for the bus; empty: all", Text{&Config::bus_address}},
    {"bus_port", "port for the bus; 0: a free one", Number{&Config::bus_port, 0, 65535}},
    {"bus_key_file", "file with the bus key, created by 'zebctl bus-key'; without one: loopback only",
     Text{&Config::bus_key_file}},
    {"log_level", "level of the log: trace, debug, info, warn, error or off",
     Choice{&Config::log_level, "trace|debug|info|warn|error|off"}},
    {"register_time", "seconds within which a login must be registered",
     Number{&Config::register_time, 1, 86'400}},
    {"max_connections", "maximum number of client connections", Number{&Config::max_connections, 1, 100'000}},
    {"max_request", "largest request in KiB", Number{&Config::max_request, 4, 16'384}},
    {"password_threads", "threads that check passwords", Number{&Config::password_threads, 1, 64}},
    {"password_queue", "maximum number of queued password checks",
     Number{&Config::password_queue, 0, 10'000}},
    {"password_passes", "argon2id passes for new hashes", Number{&Config::password_passes, 1, 16}},
    {"password_memory", "argon2id memory for new hashes in MiB", Number{&Config::password_memory, 1, 1'024}},
}};

constexpr std::string_view kVariablePrefix = "ZEBD_";

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
    throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd", where + ": " + what);
}

struct Setter {
    const std::string& where;
    const std::string& text;
    Config& config;

    void operator()(const Text& value) const {
        if (text.find('\0') != std::string::npos) Fail(where, "must not contain a zero character");
        config.*value.member = text;
    }

    void operator()(const Number& value) const {
        const NumberRange range{value.least, value.most};
        const auto number = WholeNumber(text, range);
        if (!number) Fail(where, RangeRule(range));
        config.*value.member = *number;
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

// How many characters have to be inserted, removed or replaced to make one text the other.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t corner = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = corner + (a[i - 1] == b[j - 1] ? 0 : 1);
            corner = std::exchange(row[j], std::min({replaced, row[j] + 1, row[j - 1] + 1}));
        }
    }
    return row.back();
}

// The setting that was probably meant, as `shown` writes it; empty when none is similar.
std::string DidYouMean(std::string_view name, const std::function<std::string(std::string_view)>& shown) {
    constexpr std::size_t kSimilar = 2;
    const auto distance = [wanted = UpperCase(name)](const Setting& setting) {
        return Distance(UpperCase(setting.name), wanted);
    };
    const auto nearest = std::ranges::min_element(kSettings, {}, distance);
    return distance(*nearest) > kSimilar ? "" : "; did you mean " + shown(nearest->name) + "?";
}

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

}  // namespace

std::span<const Setting> ConfigSettings() {
    return kSettings;
}

std::string TypeOf(const Setting& setting) {
    return std::holds_alternative<Number>(setting.value) ? "NUMBER" : "TEXT";
}

std::string RangeOf(const Setting& setting) {
    const auto* const number = std::get_if<Number>(&setting.value);
    return number ? RangeText({number->least, number->most}) : std::string();
}

std::string DefaultOf(const Setting& setting) {
    const Config config;
    return std::visit(
        [&config](const auto& value) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, Number>) {
                return std::to_string(config.*value.member);
            } else {
                return config.*value.member;
            }
        },
        setting.value);
}

void ApplyFile(const std::string& path, Config& config) {
    std::ifstream file(path, std::ios::binary);
    std::string text;
    std::array<char, 4096> part{};
    while (file.read(part.data(), part.size()) || file.gcount() > 0)
        text.append(part.data(), static_cast<std::size_t>(file.gcount()));
    if (!file.eof()) Fail(path, std::string("cannot be read: ") + std::strerror(errno));
    ApplyFileText(text, path, config);
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
        if (!setting) Fail(where, "unknown key " + Quoted(key.str()) + DidYouMean(key.str(), Quoted));
        std::string value;
        if (const auto* string = node.as_string()) {
            value = string->get();
        } else if (const auto* number = node.as_integer()) {
            value = std::to_string(number->get());
        } else {
            Fail(where, Quoted(key.str()) + " must be a text or a whole number");
        }
        Set(*setting, where + ": " + Quoted(key.str()), value, config);
    }
}

void ApplyEnvironment(const char* const* environment, Config& config) {
    for (; *environment; ++environment) {
        const std::string_view entry = *environment;
        const std::string variable(entry.substr(0, entry.find('=')));
        if (!variable.starts_with(kVariablePrefix) || variable == kFileVariable) continue;
        const std::string_view name = std::string_view(variable).substr(kVariablePrefix.size());
        const auto setting = std::ranges::find(kSettings, variable,
                                               [](const Setting& known) { return VariableOf(known.name); });
        if (setting == kSettings.end()) Fail(variable, "unknown variable" + DidYouMean(name, VariableOf));
        const auto value = entry.substr(std::min(entry.size(), variable.size() + 1));
        if (!value.empty()) Set(*setting, variable, std::string(value), config);
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
    return std::string(kVariablePrefix) + UpperCase(setting);
}

}  // namespace kq::zeb
