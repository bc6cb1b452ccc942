// The settings file lies where IniFile puts it; all keys share its default section.
#include "client/SessConfig.h"

#include <algorithm>

#include <kqappsession/Error.h>

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

ServerSettings ReadServerSettings(const SessConfig& config, const setting::Row<setting::Number>& time_out) {
    return {config.Read(setting::Address), config.Read(setting::Port), config.Read(time_out),
            config.Read(setting::UseASServerForLogin)};
}

bool WriteServerAddress(SessConfig& config, const ServerSettings& server) {
    bool kept = config.Write(setting::Address, server.address);
    kept = config.Write(setting::Port, server.port) && kept;
    return config.Write(setting::TimeOut, server.time_out) && kept;
}

bool WriteServerSettings(SessConfig& config, const ServerSettings& server) {
    const bool kept = WriteServerAddress(config, server);
    return config.Write(setting::UseASServerForLogin, server.use_as_server_for_login) && kept;
}

void RequireServer(const Texts& texts, const ServerSettings& server) {
    constexpr std::int32_t kLastPort = 65'535;
    if (!server.address.empty() && server.port > 0 && server.port <= kLastPort && server.time_out > 0) return;
    texts.RaiseASError(kqaserrLoginBadAddr, {server.address, TextOf(server.port), TextOf(server.time_out)},
                       ErrorCause::Arguments);
}

}  // namespace kq
