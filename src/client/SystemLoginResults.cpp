// What a login's reply delivers: translation table, session record, profiles; and both last steps.
#include <exception>

#include <kqappsession/Error.h>
#include <kqappsession/Signal.h>

#include "base/Convert.h"
#include "client/ProfilesOnClient.h"
#include "client/SystemLogin.h"
#include "dialogs/frmProfiles.h"
#include "messages/ParseASData.h"
#include "platform/Machine.h"
#include "platform/Process.h"
#include "session/SessionRecords.h"
#include "util/VersionInfo.h"

namespace kq {

namespace {

constexpr const char* kDefaultProfile = "Default";

template <class T>
std::shared_ptr<T> ObjectIn(const std::string& field) {
    const ASData data = ParseASData(field);
    const auto* object = std::get_if<std::shared_ptr<T>>(&data.object);
    return object != nullptr ? *object : nullptr;
}

}  // namespace

LoginStates SystemLogin::GetTranslation() {
    auto table = ObjectIn<TranslationTable>(reply_.TranslationTable);
    if (!table) return Meet(LoginFailure::NoTranslation);
    state_.translation_table = std::move(table);
    return lsGetSessionInfo;
}

LoginStates SystemLogin::GetSessionInfo() {
    auto message = ObjectIn<XMLMessage>(reply_.SessionInfo);
    if (!message) return Meet(LoginFailure::NoSessionInfo);
    auto info = std::make_shared<KQAppSessionInfo>();
    SessionRecords::Fill(*info, std::move(message), reply_.SessionID, arguments_.AppID, connection_);
    state_.session_info = std::move(info);
    return lsGetProfile;
}

LoginStates SystemLogin::GetProfile() {
    auto profiles = ObjectIn<Profiles>(reply_.Profiles);
    if (!profiles) profiles = std::make_shared<Profiles>();
    state_.SetProfiles(profiles);
    state_.current_profile.reset();

    bool changed = false;
    if (!state_.use_profiles) {
        if (!profiles->Exists(kDefaultProfile)) {
            profiles->Add(std::make_shared<Profile>(kDefaultProfile));
            changed = true;
        }
        state_.current_profile = profiles->Item(kDefaultProfile);
    } else {
        if (!details_.ask_for_profile) state_.current_profile = NamedProfile(*profiles);
        if (!state_.current_profile) {
            attendant_->HideWait();
            if (!attendant_->ChooseProfile(profiles, arguments_, state_.current_profile, changed))
                return lsFailed;
        }
        if (state_.current_profile && state_.current_profile->Name() != profiles->LastUsed()) {
            profiles->SetLastUsed(state_.current_profile->Name());
            changed = true;
        }
    }
    if (changed) UploadChangedProfiles();
    return lsFinish;
}

void SystemLogin::UploadChangedProfiles() {
    ServerSettings target = details_.server;
    try {
        UploadProfiles(state_, *procedure_, *attendant_, target);
    } catch (const Error& error) {
        procedure_->CheckTermination();
        procedure_->Note(error.Number());
        ReportStrayException(std::current_exception());
    }
}

std::shared_ptr<Profile> SystemLogin::NamedProfile(const Profiles& profiles) const {
    for (const std::string& name : {ProfileInCommand(arguments_.CommandStr), profiles.LastUsed()}) {
        if (!name.empty() && profiles.Exists(name)) return profiles.Item(name);
    }
    return nullptr;
}

void SystemLogin::Finish() {
    attendant_->HideWait();
    state_.app_server_port = ReceivedValLong(reply_.Port);
    state_.app_server_address = details_.server.address;
    state_.app_server_time_out = arguments_.TimeOut;
    state_.use_as_server_for_login = details_.server.use_as_server_for_login;
    state_.SetLoginState(kqaslsSystemLogin);
}

void SystemLogin::Failed() {
    attendant_->HideWait();
    state_.session_info = std::make_shared<KQAppSessionInfo>();
    state_.ReleaseLoginClient();
    state_.translation_table.reset();
    state_.SetProfiles(nullptr);
    state_.current_profile.reset();
    state_.SetLoginState(kqaslsNotLoggedIn);
}

std::string ClientVersionOf(const AppObject* app, const PlatformPtr& platform) {
    if (app != nullptr) {
        const auto major = app->Property("Major");
        const auto minor = app->Property("Minor");
        const auto revision = app->Property("Revision");
        if (major && minor && revision) return *major + "." + *minor + "." + *revision;
    }
    VersionInfo version(platform);
    version.Initialize(platform->Parts().process->ExecutablePath());
    return version.Initialized() && version.CodePageCount() > 0 ? version.FileVersion(1) : std::string();
}

}  // namespace kq
