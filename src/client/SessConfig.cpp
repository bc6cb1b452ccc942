// The settings file lies where IniFile puts it; all keys share its default section. "UseASServerForLogin" is
// kept as "1" or "0".
#include "client/SessConfig.h"

#include <algorithm>

#include "base/Convert.h"

namespace kq {

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

void WriteServerSettings(SessConfig& config, const ServerSettings& settings) {
    config.SetSetting("Address", settings.address);
    config.SetSetting("Port", TextOf(settings.port));
    config.SetSetting("TimeOut", TextOf(settings.time_out));
    config.SetSetting("UseASServerForLogin", settings.use_as_server_for_login ? "1" : "0");
}

}  // namespace kq
