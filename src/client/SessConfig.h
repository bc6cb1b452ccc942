// The settings file of one application: "AppSess_" + AppID + ".ini" in the folder "HLXApps" of the user's
// documents.
//
// Values are read from the file at every call and written to it immediately; a write that fails is silent,
// but for its result.
#pragma once

#include <string>

#include <kqappsession/Platform.h>

#include "client/SettingList.h"
#include "messages/ServerSettings.h"
#include "messages/Texts.h"
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

    // The value of a setting, as its row converts it. A malformed value raises the error of its conversion.
    template <class Form>
    typename Form::Value Read(const setting::Row<Form>& row) const {
        return Form::Read(Setting(row.key, row.default_text));
    }
    // Whether the value reached the file.
    template <class Form>
    bool Write(const setting::Row<Form>& row, const typename Form::Value& value) {
        SetSetting(row.key, Form::Write(value));
        return ini_file_.Kept();
    }

    // The text of a key; `default_value` when it is missing or empty.
    std::string Setting(const std::string& key, const std::string& default_value) const;
    void SetSetting(const std::string& key, const std::string& value);
    const std::string& Path() const { return ini_file_.Path(); }

 private:
    IniFile ini_file_;
    std::string app_id_;
};

// The settings of the login server. `time_out`: how a missing time-out is read.
ServerSettings ReadServerSettings(const SessConfig& config,
                                  const setting::Row<setting::Number>& time_out = setting::TimeOut);
// Write address, port and time-out, and the second one the flag as well. False when the file does not hold
// all of them now.
[[nodiscard]] bool WriteServerAddress(SessConfig& config, const ServerSettings& server);
[[nodiscard]] bool WriteServerSettings(SessConfig& config, const ServerSettings& server);

// Raises kqaserrLoginBadAddr unless a connection can be made to this: an address, a port from 1 to 65535, a
// time-out above 0.
void RequireServer(const Texts& texts, const ServerSettings& server);

}  // namespace kq
