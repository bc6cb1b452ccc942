// The two connections, the collection's events and the pause.
#include "client/ClientState.h"

#include <cmath>
#include <utility>

#include <kqappsession/Error.h>

#include "client/ProfilesOnClient.h"
#include "platform/Clock.h"
#include "platform/Machine.h"

namespace kq {

namespace {

constexpr float kSecondsOfDay = 86'400;

std::shared_ptr<APClient> NewMessageClient(const PlatformPtr& platform) {
    auto client = APClient::Create(platform);
    client->SetReceiveMode(ReceiveMode::Take);
    client->SetSendType(DataType::XML);
    client->SetReceiveType(DataType::XML);
    return client;
}

void Disconnect(const std::shared_ptr<APClient>& client) {
    if (client) client->Disconnect();
}

}  // namespace

ClientState::ClientState(PlatformPtr given_platform) : platform(std::move(given_platform)), texts(platform) {}

SessConfig& ClientState::OpenConfig(const std::string& app_id) {
    config.emplace(platform).Initialize(app_id);
    return *config;
}

// The handlers may drop the client object.
void ClientState::SetLoginState(KQAppSessLoginState login_state) {
    const auto self = shared_from_this();
    if (std::exchange(login_state_, login_state) != login_state) LoginStateChanged(login_state);
}

void ClientState::SetProfiles(std::shared_ptr<Profiles> profiles) {
    profiles_owner_.Cancel();
    profiles_ = std::move(profiles);
    if (!profiles_) return;
    const auto upload = [this] {
        const auto self = shared_from_this();
        if (!busy) UpdateProfiles(*this);
    };
    profiles_->ProfileAdded.Connect(profiles_owner_, [upload](const auto&) { upload(); });
    profiles_->ProfileRemoved.Connect(profiles_owner_, [upload](const auto&) { upload(); });
}

std::shared_ptr<APClient> ClientState::NewLoginClient() {
    ReleaseLoginClient();
    login_client_ = NewMessageClient(platform);
    newest_client_ = login_client_;
    return login_client_;
}

std::shared_ptr<APClient> ClientState::NewSessionClient() {
    ReleaseSessionClient();
    session_client_ = NewMessageClient(platform);
    newest_client_ = session_client_;
    session_client_->Disconnected.Connect(session_owner_, [this] {
        ending_session_client_.reset();
        SetLoginState(kqaslsSystemLogin);
    });
    return session_client_;
}

void ClientState::ReleaseLoginClient() {
    Disconnect(login_client_);
    login_client_.reset();
}

void ClientState::ReleaseSessionClient() {
    session_owner_.Cancel();
    Disconnect(session_client_);
    session_client_.reset();
    ending_session_client_.reset();
}

void ClientState::Terminate() {
    ++terminations_;
    Disconnect(login_client_);
    Disconnect(session_client_);
    login_client_.reset();
    if (session_client_) ending_session_client_ = std::move(session_client_);
    platform->Loop()->Post([] {});  // wakes a pause, which sees the count
    Terminated();
}

void ClientState::GiveUp() {
    given_up_ = true;
    Disconnect(newest_client_.lock());
    platform->Loop()->Post([] {});  // wakes a pause
}

float ClientState::TimeOfDay() const {
    return static_cast<float>(platform->Parts().clock->SecondsSinceMidnight());
}

void ClientState::Pause(float seconds) {
    EventLoop& loop = *platform->Loop();
    const auto terminations = terminations_;
    const auto ended = [&] { return loop.Quitting() || given_up_ || terminations_ != terminations; };
    const auto wait_for = [&](const std::function<bool()>& done, float at_most) {
        const auto deadline =
            loop.Now() + Milliseconds(std::max<std::int64_t>(1, std::llround(std::ceil(at_most * 1000))));
        loop.RunUntil([&] { return ended() || done(); }, deadline);
    };

    float start = TimeOfDay();
    const float last_moment = kSecondsOfDay - seconds;
    while (!ended() && start >= last_moment) {
        wait_for([&] { return TimeOfDay() < last_moment; }, kSecondsOfDay - start);
        start = TimeOfDay();
    }
    const auto passed = [&] { return TimeOfDay() - start >= seconds; };
    while (!ended() && !passed()) {
        wait_for(passed, seconds - (TimeOfDay() - start));
    }
}

Procedure::Procedure(ClientState& state) : state_(state), terminations_(state.Terminations()) {
    if (state_.busy) {
        Raise(RuntimeError::InvalidProcedureCall, "A login procedure of this client is already running");
    }
    CheckTermination();
    state_.busy = true;
}

Procedure::~Procedure() {
    state_.busy = false;
    state_.given_up_ = false;
    state_.newest_client_.reset();
}

void Procedure::CheckTermination() const {
    if (Terminated()) {
        Raise(NetError::Interrupted, kLibrarySource, "The client was terminated while the procedure ran");
    }
    if (state_.platform->Loop()->Quitting()) {
        Raise(NetError::Interrupted, kLibrarySource, "The program's event loop was ended");
    }
    if (state_.GivenUp()) throw UserGaveUp();
}

}  // namespace kq
