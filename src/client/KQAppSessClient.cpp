// The face of the client object over its state and procedures. Every call that can wait holds the state, so
// the object may be dropped by what runs inside.
#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessClient.h>

#include "client/ClientState.h"
#include "client/LoginPrompts.h"
#include "client/ProfilesOnClient.h"
#include "client/ServerLogin.h"
#include "client/SystemLogin.h"
#include "platform/Machine.h"
#include "session/SessionRecords.h"
#include "util/ResolveDomain.h"

namespace kq {

namespace {

// The object itself, or one made and loaded from its text form.
template <class T>
std::shared_ptr<T> ObjectOf(const KQAppSessClient::TextOrObject<T>& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        auto object = std::make_shared<T>();
        object->LoadXML(*text);
        return object;
    }
    const auto* object = std::get_if<std::shared_ptr<T>>(&value);
    if (object == nullptr || !*object) Raise(RuntimeError::ObjectNotSet);
    return *object;
}

std::shared_ptr<Profile> InitialProfile(const Profiles& profiles, const std::string& name) {
    if (name.empty()) return profiles.Count() > 0 ? profiles.Item(1) : nullptr;
    return profiles.Exists(name) ? profiles.Item(name) : nullptr;
}

std::shared_ptr<ClientState> NewState(PlatformPtr platform) {
    return std::make_shared<ClientState>(RequirePlatform(std::move(platform), "A client object"));
}

// Without an address nothing is written.
void StoreConnectState(ClientState& state, const ServerSettings& server,
                       bool (*write)(SessConfig&, const ServerSettings&)) {
    if (!state.session_info->IsInitialized()) state.texts.RaiseASError(kqaserrLoginSessionRequired);
    SessConfig& config = state.OpenConfig(state.session_info->AppID());
    if (server.address.empty() || write(config, server)) return;
    Raise(RuntimeError::PathFileAccess, "The settings could not be stored in " + config.Path(),
          ErrorCause::SettingsFile);
}

}  // namespace

const char* NameOf(KQAppSessLoginState state) {
    switch (state) {
        case kqaslsNotLoggedIn:
            return "kqaslsNotLoggedIn";
        case kqaslsSystemLogin:
            return "kqaslsSystemLogin";
        case kqaslsServerLogin:
            return "kqaslsServerLogin";
    }
    return "";
}

KQAppSessClient::KQAppSessClient(PlatformPtr platform) : state_(NewState(std::move(platform))) {
    state_->LoginStateChanged.Connect(owner_,
                                      [this](KQAppSessLoginState state) { LoginStateChanged(state); });
    state_->LoginStepDone.Connect(owner_, [this](const LoginStep& step) { LoginStepDone(step); });
}

KQAppSessClient::~KQAppSessClient() {
    state_->Terminate();
}

std::shared_ptr<TranslationTable> KQAppSessClient::TranslationTable() const {
    return state_->translation_table;
}
std::shared_ptr<Profiles> KQAppSessClient::Profiles() const {
    return state_->GetProfiles();
}
std::shared_ptr<Profile> KQAppSessClient::CurrentProfile() const {
    return state_->current_profile;
}
std::shared_ptr<APClient> KQAppSessClient::SessionClient() const {
    return state_->SessionClient();
}
std::shared_ptr<KQAppSessionInfo> KQAppSessClient::SessionInfo() const {
    return state_->session_info;
}
bool KQAppSessClient::UseProfiles() const {
    return state_->use_profiles;
}
void KQAppSessClient::SetUseProfiles(bool use) {
    state_->use_profiles = use;
}
KQAppSessLoginState KQAppSessClient::LoginState() const {
    return state_->LoginState();
}
std::string KQAppSessClient::AppServerAddress() const {
    return state_->app_server_address;
}
void KQAppSessClient::SetAppServerAddress(const std::string& address) {
    state_->app_server_address = address;
}
std::int32_t KQAppSessClient::AppServerPort() const {
    return state_->app_server_port;
}
void KQAppSessClient::SetAppServerPort(std::int32_t port) {
    state_->app_server_port = port;
}
std::int32_t KQAppSessClient::AppServerTimeOut() const {
    return state_->app_server_time_out;
}
void KQAppSessClient::SetAppServerTimeOut(std::int32_t time_out) {
    state_->app_server_time_out = time_out;
}
std::string KQAppSessClient::RestrictIP() const {
    return state_->restrict_ip;
}
void KQAppSessClient::SetRestrictIP(const std::string& address) {
    state_->restrict_ip = address;
}
std::int32_t KQAppSessClient::RestrictPort() const {
    return state_->restrict_port;
}
void KQAppSessClient::SetRestrictPort(std::int32_t port) {
    state_->restrict_port = port;
}
bool KQAppSessClient::UseASServerForLogin() const {
    return state_->use_as_server_for_login;
}
void KQAppSessClient::SetUseASServerForLogin(bool use) {
    state_->use_as_server_for_login = use;
}

void KQAppSessClient::SetCurrentProfile(std::shared_ptr<Profile> profile) {
    if (!profile || !state_->GetProfiles()) Raise(RuntimeError::ObjectNotSet);
    if (state_->GetProfiles()->Exists(profile->Name())) state_->current_profile = std::move(profile);
}

bool KQAppSessClient::SystemLogin(bool interactive, const SystemLoginArguments& arguments) {
    SystemLoginArguments stored_setting = arguments;
    stored_setting.UseASServerForLogin.reset();
    return SystemLogin2(interactive, stored_setting);
}

bool KQAppSessClient::SystemLogin2(bool interactive, const SystemLoginArguments& arguments) {
    const auto state = state_;
    return kq::SystemLogin(*state, interactive, arguments).Run();
}

bool KQAppSessClient::ServerLogin(bool interactive) {
    const auto state = state_;
    return kq::ServerLogin(*state, interactive).Run();
}

bool KQAppSessClient::Login(const std::string& app_id, const std::string& interface_version,
                            std::shared_ptr<AppObject> app_obj, const std::string& command_str,
                            std::shared_ptr<const Icon> app_icon) {
    const auto state = state_;
    SystemLoginArguments arguments;
    arguments.AppID = app_id;
    arguments.InterfaceVersion = interface_version;
    arguments.AppObj = std::move(app_obj);
    arguments.CommandStr = command_str;
    arguments.AppIcon = std::move(app_icon);
    for (;;) {
        if (!kq::SystemLogin(*state, true, arguments).Run()) return false;
        const bool registered = kq::ServerLogin(*state, true).Run();
        if (state->LoginState() != kqaslsNotLoggedIn) return registered;
    }
}

bool KQAppSessClient::ChangeConfiguration() {
    const auto state = state_;
    if (!state->config) state->texts.RaiseASError(kqaserrLoginSessionRequired);
    const Procedure procedure(*state);
    SessConfig config = *state->config;  // the host may open another while its user is asked
    PromptedSettings settings(*state, config);
    const bool confirmed = kq::ChangeConfiguration(*state, settings);
    procedure.CheckTermination();
    return confirmed;
}

bool KQAppSessClient::UpdateProfilesEx(bool interactive, std::string& address, std::int32_t& port,
                                       std::int32_t& time_out) {
    const auto state = state_;
    ServerSettings target{address, port, time_out};
    const auto show_caller = [&] {
        address = target.address;
        port = target.port;
        time_out = target.time_out;
    };
    try {
        const bool sent = kq::UpdateProfilesEx(*state, interactive, target);
        show_caller();
        return sent;
    } catch (...) {
        show_caller();
        throw;
    }
}

void KQAppSessClient::UpdateProfiles() {
    const auto state = state_;
    kq::UpdateProfiles(*state);
}

void KQAppSessClient::AddReplaceProfile(std::shared_ptr<Profile> changed_profile) {
    const auto state = state_;
    kq::AddReplaceProfile(*state, true, std::move(changed_profile));
}

void KQAppSessClient::AddReplaceProfileASP(std::shared_ptr<Profile> changed_profile) {
    const auto state = state_;
    kq::AddReplaceProfile(*state, false, std::move(changed_profile));
}

void KQAppSessClient::SetSystemLoginState(const TextOrObject<XMLMessage>& session_msg,
                                          const TextOrObject<kq::TranslationTable>& translation_table,
                                          const TextOrObject<kq::Profiles>& profiles,
                                          const std::string& current_profile_name,
                                          const std::string& app_server_address, std::int32_t app_server_port,
                                          std::int32_t app_server_time_out) {
    ClientState& state = *state_;
    auto message = ObjectOf(session_msg);
    auto collection = ObjectOf(profiles);
    if (std::holds_alternative<std::string>(translation_table)) {
        ObjectOf(translation_table);  // must load, but the field keeps its value
    } else if (const auto* table = std::get_if<std::shared_ptr<kq::TranslationTable>>(&translation_table)) {
        state.translation_table = *table;
    } else {
        state.translation_table.reset();
    }
    state.session_info = std::make_shared<KQAppSessionInfo>();
    SessionRecords::Fill(*state.session_info, std::move(message));
    state.SetProfiles(std::move(collection));
    state.current_profile = InitialProfile(*state.GetProfiles(), current_profile_name);
    const SessConfig& config = state.OpenConfig(state.session_info->AppID());
    state.app_server_address = app_server_address;
    state.app_server_port = app_server_port;
    state.app_server_time_out = app_server_time_out;
    if (app_server_time_out == 0) state.app_server_time_out = config.Read(setting::RequiredTimeOut);
    if (!app_server_address.empty() && app_server_port != 0) state.SetLoginState(kqaslsSystemLogin);
}

void KQAppSessClient::SetSystemConnectState(const std::string& system_address, std::int32_t system_port,
                                            std::int32_t system_time_out) {
    StoreConnectState(*state_, {system_address, system_port, system_time_out}, WriteServerAddress);
}

void KQAppSessClient::SetSystemConnectState2(const std::string& system_address, std::int32_t system_port,
                                             std::int32_t system_time_out, bool use_as_server_for_login) {
    StoreConnectState(*state_, {system_address, system_port, system_time_out, use_as_server_for_login},
                      WriteServerSettings);
}

void KQAppSessClient::TerminateClient() {
    state_->Terminate();
}

std::string KQAppSessClient::IPAddressFromHostName(const std::string& host_name) const {
    return ResolveDomain(state_->platform).IPFromDomain(host_name);
}

}  // namespace kq
