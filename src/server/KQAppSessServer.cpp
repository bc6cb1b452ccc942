// The session manager's members: setting up, listening, taking and leaving the place on the bus, tearing
// down.
//
// Stopping the bus client runs the event loop, so a member may come back from it to find that another has
// been called meanwhile; the turn counter tells.
#include <algorithm>
#include <array>
#include <exception>

#include <kqappsession/KQAppSessServer.h>

#include "base/Convert.h"
#include "platform/Machine.h"
#include "server/KQAppSessServerImpl.h"

namespace kq {
namespace {

constexpr std::int32_t kDefaultInfoInterval = 120;   // s
constexpr std::int32_t kRemovedTimerInterval = 100;  // ms
constexpr std::string_view kBusType = "AS";          // the address of all application servers
constexpr std::string_view kBusSubType = "Broadcast";
constexpr std::size_t kMostBytes = 1U << 20;  // of a request before the client has registered

// The name of the installer's file until the host sets another one. "VL2" is the one application whose
// installer is not a Setup.exe; its identifier is compared exactly.
std::string DefaultInstaller(const std::string& app_id) {
    return app_id == "VL2" ? "Valtorin2.msi" : "Setup.exe";
}

// The failure of one step waits until the others are done; the first one is then raised.
class Failures {
 public:
    template <class Step>
    void Collect(Step&& step) {
        try {
            step();
        } catch (...) {
            if (!first_) first_ = std::current_exception();
        }
    }
    void Rethrow() const {
        if (first_) std::rethrow_exception(first_);
    }

 private:
    std::exception_ptr first_;
};

}  // namespace

InterfaceVersions::InterfaceVersions(std::string_view text)
    : versions_(Split(text, text.find('|') != std::string_view::npos ? '|' : ',')) {}

InterfaceVersions InterfaceVersions::Invalid() {
    InterfaceVersions invalid;
    invalid.valid_ = false;
    return invalid;
}

namespace {

APLimits ListenerLimits() {
    APLimits limits;
    limits.frame = kMostBytes;
    limits.proof = kProofTime;
    return limits;
}

}  // namespace

KQAppSessServer::Impl::Impl(KQAppSessServer& face, PlatformPtr machine)
    : platform(RequirePlatform(std::move(machine), "A session manager")),
      listener(kq::Listener::Create(platform)),
      sessions(std::make_shared<KQAppSessionInfos>()),
      face_(&face),
      texts_(platform),
      info_timer_(platform) {
    listener->SetReceiveType(DataType::XML);
    listener->SetKeepAlive(true);
    listener->SetLimits(ListenerLimits());
    SetInfoInterval(kDefaultInfoInterval);

    listener->Receive.Connect(
        owner_, [this](const ClientPtr& client, const Block& block) { mListener_Receive(client, block); });
    listener->Disconnected.Connect(owner_,
                                   [this](const ClientPtr& client) { mListener_Disconnected(client); });
    listener->ClientError.Connect(
        owner_, [this](const ClientPtr& client, std::int32_t number, const std::string& description) {
            mListener_ClientError(client, number, description);
        });
    listener->Error.Connect(owner_, [this](std::int32_t number, const std::string& description) {
        const auto self = shared_from_this();
        Raise(&KQAppSessServer::Error, number, description);
    });
    info_timer_.Tick.Connect(owner_, [this] {
        const auto self = shared_from_this();
        IgnoreErrors([this] { SendSessionList(); });
    });
}

void KQAppSessServer::Impl::Leave() {
    face_ = nullptr;
    owner_.Cancel();
    bus_owner_.Cancel();
    try {
        Terminate();
    } catch (...) {
        ReportStrayException(std::current_exception());
    }
}

void KQAppSessServer::Impl::RequireInitialized() const {
    if (!initialized) texts_.RaiseASError(kqaserrNotInitialized);
}

void KQAppSessServer::Impl::SetInfoInterval(std::int32_t seconds) {
    info_interval = seconds;
    const bool enabled = info_timer_.Enabled();
    if (enabled) info_timer_.SetEnabled(false);
    const std::int64_t milliseconds = std::int64_t{seconds} * 1000;
    if (milliseconds != static_cast<std::int32_t>(milliseconds)) kq::Raise(RuntimeError::Overflow);
    info_timer_.SetInterval(static_cast<std::int32_t>(milliseconds));
    if (enabled) info_timer_.SetEnabled(true);
    if (listener->Listening()) announcement_.SetBroadcastInterval(seconds);
}

void KQAppSessServer::Impl::Initialize(const std::string& app_id, std::shared_ptr<AppObject> app_obj,
                                       std::shared_ptr<XMLBusClient> client,
                                       std::shared_ptr<kq::Statistics> statistics,
                                       const InterfaceVersions& interfaces_versions) {
    app_id_ = app_id;
    app_obj_ = std::move(app_obj);
    bus_owner_.Cancel();
    client_ = std::move(client);
    if (client_) {
        client_->ReceiveMessage.Connect(bus_owner_, [this](const MessagePtr& message, bool& handled) {
            mClient_ReceiveMessage(message, handled);
        });
    }
    statistics_ = std::move(statistics);
    install_file = DefaultInstaller(app_id);
    initialized = statistics_ && client_;
    index_.Clear();
    announcement_.SessionsChanged();
    interfaces_.clear();
    if (!interfaces_versions.Valid()) texts_.RaiseASError(kqaserrInvalidInterfaces);
    interfaces_ = interfaces_versions.All();
}

void KQAppSessServer::Impl::Listen(std::int32_t port, const std::string& local_address) {
    if (listener->Listening()) texts_.RaiseASError(kqaserrAlreadyConnected, {TextOf(listener->Port())});
    RequireInitialized();
    removed_sessions_.clear();
    removed_timer_ = std::make_unique<Timer>(platform);
    removed_timer_->SetInterval(kRemovedTimerInterval);
    removed_timer_->Tick.Connect(owner_, [this] {
        removed_timer_->SetEnabled(false);
        removed_sessions_.clear();
    });
    listener->Listen(port, local_address);

    const auto turn = ++turn_;
    AttachToBus(turn);
    Failures failures;
    const auto step = [&](auto&& work) {
        if (turn == turn_) failures.Collect(work);
    };
    step([this] { BuildInformation(); });
    step([this] { SendInformation([this](const auto& hand) { announcement_.SendAlone(hand); }); });
    step([this] { SendSessionList(); });
    step([this] { info_timer_.SetEnabled(true); });
    failures.Rethrow();
}

void KQAppSessServer::Impl::AttachToBus(std::uint64_t turn) {
    const auto client = client_;
    // Called from an event while StopListening waits for the bus client to stop: it counts what ran before
    // that.
    if (!stopping_bus_) bus_was_running_ = client->Running();
    IgnoreErrors([&] { client->Stop(); });
    if (turn != turn_) return;
    const std::string type(kBusType);
    const std::string subtype(kBusSubType);
    IgnoreErrors([&] { client->RemoveSubscription(type, subtype); });
    IgnoreErrors([&] { client->AddSubscription(type, BusSubscription::Ordinary, subtype); });
    IgnoreErrors([&] { client->Start(); });
}

void KQAppSessServer::Impl::BuildInformation() {
    announcement_.Forget();
    const auto& bus = Bus();
    const Installer installer = FindInstaller(platform, app_obj_.get(), app_id_, install_file);
    ApplicationInfo info;
    info.AppID = app_id_;
    info.Port = TextOf(listener->Port());
    info.Address = listener->LocalAddress();
    info.BroadcastInterval = TextOf(info_interval);
    info.ClientPath = installer.path;
    info.ClientVersion = installer.version;
    info.InterfaceVersions = interfaces_;
    announcement_.Keep(info, ASRequestInfo{bus.ReplyType(), bus.ReplySubType()});
}

void KQAppSessServer::Impl::StopListening(bool disconnect_all) {
    RequireInitialized();
    const auto turn = ++turn_;
    const auto client = client_;
    listener->StopListening(disconnect_all);
    info_timer_.SetEnabled(false);
    Failures failures;
    failures.Collect([this] { SendInformation([this](const auto& hand) { announcement_.SendDown(hand); }); });
    if (turn == turn_) DetachFromBus(turn, *client);
    failures.Rethrow();
}

void KQAppSessServer::Impl::DetachFromBus(std::uint64_t turn, XMLBusClient& client) {
    stopping_bus_ = true;
    IgnoreErrors([&] { client.Stop(); });
    stopping_bus_ = false;
    if (turn != turn_) return;
    IgnoreErrors([&] { client.RemoveSubscription(std::string(kBusType), std::string(kBusSubType)); });
    IgnoreErrors([&] {
        if (bus_was_running_) client.Start();
    });
}

void KQAppSessServer::Impl::Terminate() {
    if (!initialized) return;
    Failures failures;
    if (listener->Listening()) failures.Collect([this] { StopListening(false); });
    bus_owner_.Cancel();
    client_ = nullptr;
    statistics_ = nullptr;
    interfaces_.clear();
    initialized = false;
    failures.Rethrow();
}

XMLBusClient& KQAppSessServer::Impl::Bus() const {
    if (!client_) kq::Raise(RuntimeError::ObjectNotSet);
    return *client_;
}

// Only while listening: a list says that this server takes clients.
void KQAppSessServer::Impl::SendSessionList() {
    if (!listener->Listening()) return;
    SendInformation([this](const auto& hand) { announcement_.SendSessions(index_, hand); });
}

void KQAppSessServer::Impl::Send(XMLMessage message, const std::string& type, const std::string& subtype,
                                 Milliseconds keep) {
    message.SetDestination({type, subtype});
    const auto sent = std::make_shared<XMLMessage>(std::move(message));
    Bus().Send(*sent, keep);
    Raise(&KQAppSessServer::XMLBusSend, sent);
}

KQAppSessServer::KQAppSessServer(PlatformPtr platform)
    : impl_(std::make_shared<Impl>(*this, std::move(platform))) {}

KQAppSessServer::~KQAppSessServer() {
    const auto impl = impl_;
    impl->Leave();
}

std::int32_t KQAppSessServer::InfoInterval() const {
    return impl_->info_interval;
}

void KQAppSessServer::SetInfoInterval(std::int32_t seconds) {
    impl_->SetInfoInterval(seconds);
}

std::shared_ptr<Listener> KQAppSessServer::Listener() const {
    impl_->RequireInitialized();
    return impl_->listener;
}

const std::shared_ptr<KQAppSessionInfos>& KQAppSessServer::Sessions() const {
    return impl_->sessions;
}

void KQAppSessServer::Initialize(const std::string& app_id, std::shared_ptr<AppObject> app_obj,
                                 std::shared_ptr<XMLBusClient> client, std::shared_ptr<Statistics> statistics,
                                 const InterfaceVersions& interfaces_versions) {
    impl_->Initialize(app_id, std::move(app_obj), std::move(client), std::move(statistics),
                      interfaces_versions);
}

void KQAppSessServer::Terminate() {
    const auto impl = impl_;
    impl->Terminate();
}

void KQAppSessServer::Listen(std::int32_t listen_port, const std::string& local_address) {
    const auto impl = impl_;
    impl->Listen(listen_port, local_address);
}

void KQAppSessServer::StopListening(bool disconnect_all) {
    const auto impl = impl_;
    impl->StopListening(disconnect_all);
}

bool KQAppSessServer::CheckMessage(const MessagePtr& message) const {
    static constexpr std::array kTypes = {RequestBroadcastAS::kType, ASRegistrationResponse::kType,
                                          ASLogoutUser::kType};
    return message && std::ranges::find(kTypes, message->Type()) != kTypes.end() &&
           UpperCase(message->Schema()).find(UpperCase(kZEBSchemas)) != std::string::npos;
}

bool KQAppSessServer::IsInitialized() const {
    return impl_->initialized;
}

void KQAppSessServer::setInstallExeFile(const std::string& install_exe_file) {
    impl_->install_file = install_exe_file;
}

}  // namespace kq
