// The two ways in, the way out on the bus, and the clock.
#include "zeb/Zeb.h"

#include <kqappsession/Error.h>

#include "tools/program/OneLine.h"

namespace kq::zeb {
namespace {

constexpr std::int32_t kTick = 5'000;  // ms
// Application servers reconnect to a restarted bus within 15 s. One that was asked while it was away has not
// received the request.
constexpr std::int64_t kTicksToAskAfterStart = 6;
constexpr std::int64_t kTicksToAsk = ServerRegistry::kAskInterval.count() / kTick;
// A client's time from one request to the next until it has logged in: its user may have to be asked in
// between.
constexpr Milliseconds kTimeToAskAgain{300'000};

// What a client was given it must be able to send back over a connection that has not logged in, with the
// request around it.
std::size_t MaxProfiles(const ZebSettings& settings) {
    return settings.max_request / 4 * 3;
}

}  // namespace

Zeb::Zeb(PlatformPtr platform, Store& store, Executor& executor, const PasswordHasher& hasher,
         std::shared_ptr<XMLBusClient> bus, std::shared_ptr<spdlog::logger> log, const ZebSettings& settings)
    : platform_(std::move(platform)),
      settings_(settings),
      log_(std::move(log)),
      bus_(std::move(bus)),
      listener_(Listener::Create(platform_)),
      accounts_(store),
      user_data_(store, MaxProfiles(settings_)),
      sessions_(store, platform_, settings_.sessions),
      servers_(platform_->Loop()),
      passwords_(platform_->Loop(), executor, hasher),
      attempts_(platform_->Loop(), settings_.attempts),
      services_{platform_,  store,
                accounts_,  user_data_,
                sessions_,  servers_,
                passwords_, attempts_,
                *log_,      [this](const XMLMessage& message) { SendOnBus(message); }},
      client_requests_(services_),
      server_messages_(services_),
      timer_(platform_) {}

Zeb::~Zeb() {
    Stop();
}

void Zeb::Start() {
    ListenForClients();
    JoinBus();
    timer_.Tick.Connect(owner_, [this] { OnTick(); });
    timer_.SetInterval(kTick);
    timer_.SetEnabled(true);
}

void Zeb::Stop() {
    timer_.SetEnabled(false);
    owner_.Cancel();
    listener_->StopListening(true);
    bus_->Stop();
}

void Zeb::ListenForClients() {
    APLimits limits;
    limits.frame = settings_.max_request;
    listener_->SetLimits(limits);
    listener_->SetMaxClients(settings_.max_connections);
    listener_->SetKeepAlive(true);
    listener_->Accepted.Connect(owner_, [this](const auto& client) {
        names_[client->Identifier()] = AddressAndPort(client->RemoteAddress(), client->RemotePort());
    });
    listener_->Disconnected.Connect(owner_,
                                    [this](const auto& client) { names_.erase(client->Identifier()); });
    listener_->Receive.Connect(owner_,
                               [this](const auto& client, const Block& block) { OnBlock(client, block); });
    listener_->ClientError.Connect(owner_,
                                   [this](const auto& client, std::int32_t number, const std::string& text) {
                                       log_->info("Connection from {}: {} {}", NameOf(*client), number, text);
                                   });
    listener_->Error.Connect(owner_, [this](std::int32_t number, const std::string& text) {
        log_->error("Listening failed: {} {}", number, text);
    });
    listener_->Listen(settings_.port, settings_.listen);
}

void Zeb::JoinBus() {
    bus_->AddSubscription("ZEB", BusSubscription::Shared, "");
    bus_->AddSubscription("ZEB", BusSubscription::Ordinary, "Broadcast");
    bus_->ReceiveMessage.Connect(
        owner_, [this](const auto& message, bool& handled) { OnBusMessage(*message, handled); });
    bus_->ConnectionChanged.Connect(owner_, [this](bool connected, const std::string& why) {
        if (connected) {
            log_->info("On the bus");
        } else {
            log_->warn("Off the bus: {}", why);
        }
    });
    bus_->Start();
    server_messages_.AskForAnnouncements();
}

// A connection over the limit is refused without having been accepted.
std::string Zeb::NameOf(const APClient& client) const {
    const auto name = names_.find(client.Identifier());
    return name == names_.end() ? "a client that was not accepted" : name->second;
}

void Zeb::OnBlock(const Listener::ClientPtr& client, const Block& block) {
    const auto peer = std::make_shared<DirectPeer>(client, NameOf(*client), block.tag);
    XMLMessage message;
    try {
        if (block.data_type != DataType::XML) throw Error(XMLMessage::kNotAMessage, "zebd", "not XML");
        message.LoadXML(block.data, kClientMessageLimits);
    } catch (const Error&) {
        log_->info("{} sent no message and is disconnected", peer->Name());
        RefuseUnknown(client, *peer);
        return;
    }
    if (client_requests_.Handle(message, peer)) {
        client->SetDeadline(kTimeToAskAgain);
        return;
    }
    log_->info("{} sent an unknown {} and is disconnected", peer->Name(), ForLog(message.Type()));
    RefuseUnknown(client, *peer);
}

void Zeb::RefuseUnknown(const Listener::ClientPtr& client, Peer& peer) {
    ASUnknownResponse response;
    response.ErrorNum = std::to_string(NumberOf(Refusal::UnknownMessage));
    response.ErrorDesc = SentenceOf(Refusal::UnknownMessage);
    peer.Answer(response.Build());
    client->Disconnect();
}

void Zeb::OnBusMessage(const XMLMessage& message, bool& handled) {
    try {
        const bool answerable = !message.Field(kReturnMsgType).empty();
        const auto peer = std::make_shared<RelayedPeer>(message, services_.send_on_bus);
        if (server_messages_.Handle(message) || (answerable && client_requests_.Handle(message, peer))) {
            handled = true;
        } else {
            log_->debug("A message {} of the bus is not for this server", ForLog(message.Type()));
        }
    } catch (const Error& error) {
        log_->error("A message {} of the bus failed: {}", ForLog(message.Type()), error.Description());
    }
}

void Zeb::Reachable(const BusAddress& address, bool there) {
    if (bus_->Running()) server_messages_.Reachable(address, there);
}

void Zeb::OnTick() {
    ++ticks_;
    try {
        server_messages_.Tidy();
    } catch (const Error& error) {
        log_->error("Tidying up failed: {}", error.Description());
    }
    const bool asked = ticks_ % kTicksToAsk == 0 && servers_.SomeMustBeAsked();
    if (ticks_ <= kTicksToAskAfterStart || asked) server_messages_.AskForAnnouncements();
}

void Zeb::SendOnBus(const XMLMessage& message) {
    try {
        bus_->Send(message);
    } catch (const Error& error) {
        log_->error("{} could not be sent on the bus: {}", message.Type(), error.Description());
    }
}

}  // namespace kq::zeb
