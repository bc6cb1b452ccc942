// The settings file of one application: "AppSess_" + AppID + ".ini" in the folder "HLXApps" of the user's
// documents.
//
// Values are read from the file at every call and written to it immediately; a write that fails is silent,
// and whoever has to know asks Kept or uses StoreSettings.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/Platform.h>

#include "util/IniFile.h"

namespace kq {

class SessConfig {
 public:
    // The two folders that make up where the file lies.
    static constexpr int kDocumentsFolder = 5;
    static constexpr const char* kSubFolder = "HLXApps";

    explicit SessConfig(PlatformPtr platform) : ini_file_(std::move(platform)) {}

    // A path separator in the identifier becomes "_" in the file's name.
    void Initialize(const std::string& app_id);
    // Always empty: Initialize does not keep its argument.
    const std::string& AppID() const { return app_id_; }

    // The value of a key; `default_value` when it is missing or empty.
    std::string Setting(const std::string& key, const std::string& default_value) const;
    void SetSetting(const std::string& key, const std::string& value);
    // Whether the last SetSetting reached the file.
    bool Kept() const { return ini_file_.Kept(); }
    const std::string& Path() const { return ini_file_.Path(); }

 private:
    IniFile ini_file_;
    std::string app_id_;
};

// The stored settings of the login server.
struct ServerSettings {
    std::string address;
    std::int32_t port = 0;
    std::int32_t time_out = 0;  // ms
    bool use_as_server_for_login = false;
};

// What a missing time-out reads as where nothing else is said.
inline constexpr const char* kUsualTimeOut = "10000";

// `default_time_out`: the text that a missing time-out reads as; its readers differ. Malformed values raise
// the errors of their conversions.
ServerSettings ReadServerSettings(const SessConfig& config, const std::string& default_time_out);
// False when the file does not hold them now.
[[nodiscard]] bool WriteServerSettings(SessConfig& config, const ServerSettings& settings);

// Writes all of them, in order. Raises RuntimeError::PathFileAccess, with the file's path in the description,
// when one of them could not be written.
using SettingList = std::vector<std::pair<std::string, std::string>>;  // key, value
void StoreSettings(SessConfig& config, const SettingList& settings);

// Whether a connection can be made to this: an address, a port from 1 to 65535, a time-out above 0.
bool NamesServer(const std::string& address, std::int32_t port, std::int32_t time_out);

}  // namespace kq
