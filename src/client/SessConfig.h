// The settings file of one application: "AppSess_" + AppID + ".ini" in the folder "HLXApps" of the user's
// documents.
//
// Values are read from the file at every call and written to it at once; a write that fails is silent.
#pragma once

#include <string>

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

 private:
    IniFile ini_file_;
    std::string app_id_;
};

}  // namespace kq
