// The settings file lies where IniFile puts it; all keys share its default section. "UseASServerForLogin" is
// kept as "1" or "0".
#include "client/SessConfig.h"

#include <algorithm>

#include <kqappsession/Error.h>

#include "base/Convert.h"

namespace kq {

namespace {

bool WriteAll(SessConfig& config, const SettingList& settings) {
    bool kept = true;
    for (const auto& [key, value] : settings) {
        config.SetSetting(key, value);
        kept = kept && config.Kept();
    }
    return kept;
}

}  // namespace

void SessConfig::Initialize(const std::string& app_id) {
    std::string name = app_id;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '/' || c == '\\'; }, '_');
    ini_file_.SetLocation(kDocumentsFolder, kSubFolder, "AppSess_" + name + ".ini");
}

std::string SessConfig::Setting(const std::string& key, const std::string& default_value) const {
    return ini_file_.Value(key, "", default_value);
}

void SessConfig::SetSetting(const std::string& key, const std::string& value) {
    ini_file_.SetValue(key, "", "", value);
}

ServerSettings ReadServerSettings(const SessConfig& config, const std::string& default_time_out) {
    ServerSettings settings;
    settings.address = config.Setting("Address", "");
    settings.port = ValLong(config.Setting("Port", ""));
    settings.time_out = ValLong(config.Setting("TimeOut", default_time_out));
    settings.use_as_server_for_login = TextToBoolean(config.Setting("UseASServerForLogin", "1"));
    return settings;
}

bool WriteServerSettings(SessConfig& config, const ServerSettings& settings) {
    return WriteAll(config, {{"Address", settings.address},
                             {"Port", TextOf(settings.port)},
                             {"TimeOut", TextOf(settings.time_out)},
                             {"UseASServerForLogin", settings.use_as_server_for_login ? "1" : "0"}});
}

void StoreSettings(SessConfig& config, const SettingList& settings) {
    if (WriteAll(config, settings)) return;
    Raise(RuntimeError::PathFileAccess, "The settings could not be stored in " + config.Path(),
          ErrorCause::SettingsFile);
}

bool NamesServer(const std::string& address, std::int32_t port, std::int32_t time_out) {
    constexpr std::int32_t kLastPort = 65'535;
    return !address.empty() && port > 0 && port <= kLastPort && time_out > 0;
}

}  // namespace kq
