// The settings file lies where IniFile puts it; all keys share its default section.
#include "client/SessConfig.h"

#include <algorithm>

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

}  // namespace kq
