// The bus client: the queue of what is sent, the subscriptions, and the way back to the bus after a loss.
//
// Messages are written by a posted task, not inside Send, so that a burst of states within one turn of the
// loop costs one text even while the bus has room. Every callback holds the client while it raises
// events.
#include <algorithm>
#include <map>
#include <utility>

#include <kqappsession/Error.h>
#include <kqappsession/Timer.h>
#include <kqappsession/XMLBusClient.h>

#include "libs/xmlbus/BusNames.h"
#include "libs/xmlbus/BusTransport.h"
#include "libs/xmlbus/HubTransport.h"
#include "libs/xmlbus/SendQueue.h"
#include "platform/Crypto.h"
#include "platform/Machine.h"

namespace kq {
namespace {

constexpr Milliseconds kFirstDelay{250};
constexpr Milliseconds kLongestDelay{15'000};
constexpr Milliseconds kStopTime{1'000};
constexpr std::int32_t kStatisticsInterval = 60'000;  // ms
constexpr std::size_t kReplyBytes = 16;
constexpr Milliseconds kLongestExpiry = std::chrono::hours(24 * 365);  // a clock's reading later still fits

}  // namespace

class XMLBusClient::Impl {
 public:
    Impl(XMLBusClient& face, PlatformPtr platform, std::shared_ptr<BusTransport> transport);
    ~Impl();

    void UseTransport(std::shared_ptr<BusTransport> transport);
    void SetHub(BusSettings settings);
    void Start();
    void Stop();
    void AddSubscription(const BusAddress& address, BusSubscription option);
    void RemoveSubscription(const BusAddress& address);
    void Send(const XMLMessage& message, Milliseconds expiry);
    void Send(const XMLMessage& message, const BusState& state);
    BusStatistics Statistics();

    bool Running() const { return state_ == State::Running; }
    bool Connected() const { return connected_; }

    const BusAddress reply;
    std::string enterprise_id;
    BusSettings hub;
    SendQueue queue;

 private:
    enum class State { Stopped, Running, Stopping };

    void OnReady();
    void OnLost(const std::string& text);
    void OnMessage(const std::string& text);
    void Attempt();
    void AttemptLater();
    void SubscribeAll();
    void UnsubscribeAllButReply();
    void WriteSoon();
    void WriteWhileThereIsRoom();
    void DropExpired();
    void RequireSendable(const XMLMessage& message) const;
    void Sent(std::int64_t replaced);
    void Close();

    XMLBusClient& face_;
    PlatformPtr platform_;
    std::shared_ptr<BusTransport> transport_;
    std::map<BusAddress, BusSubscription> subscriptions_;
    State state_ = State::Stopped;
    bool connected_ = false;
    bool was_lost_ = false;  // since the start
    bool write_posted_ = false;
    std::string last_loss_;
    BusStatistics statistics_;
    EventLoop::TimePoint connected_since_;
    Milliseconds last_delay_{0};
    Milliseconds next_delay_ = kFirstDelay;
    EventLoop::TimerId retry_ = 0;
    Timer statistics_timer_;
    Owner transport_owner_;
    Owner owner_;
};

XMLBusClient::Impl::Impl(XMLBusClient& face, PlatformPtr platform, std::shared_ptr<BusTransport> transport)
    : reply{"Reply", platform->Parts().crypto->RandomHex(kReplyBytes)},
      face_(face),
      platform_(std::move(platform)),
      statistics_timer_(platform_) {
    UseTransport(std::move(transport));
    statistics_timer_.SetInterval(kStatisticsInterval);
    statistics_timer_.Tick.Connect(owner_, [this] {
        const auto self = face_.shared_from_this();
        face_.StatisticsEvent(Statistics());
    });
}

XMLBusClient::Impl::~Impl() {
    transport_owner_.Cancel();
    owner_.Cancel();
    platform_->Loop()->CancelTimer(retry_);
    transport_->Close();
}

void XMLBusClient::Impl::UseTransport(std::shared_ptr<BusTransport> transport) {
    transport_owner_.Cancel();
    if (transport_ != nullptr) statistics_.expired += transport_->Expired();
    transport_ = std::move(transport);
    transport_->Ready.Connect(transport_owner_, [this] { OnReady(); });
    transport_->Lost.Connect(transport_owner_, [this](const std::string& text) { OnLost(text); });
    transport_->Room.Connect(transport_owner_, [this] { WriteWhileThereIsRoom(); });
    transport_->Message.Connect(transport_owner_, [this](const std::string& text) { OnMessage(text); });
}

void XMLBusClient::Impl::SetHub(BusSettings settings) {
    if (state_ != State::Stopped) {
        Raise(RuntimeError::InvalidProcedureCall, "The bus client must be stopped before its hub is changed");
    }
    hub = std::move(settings);
    UseTransport(HubTransport::Create(platform_, hub));
}

void XMLBusClient::Impl::Start() {
    const State before = std::exchange(state_, State::Running);
    if (before == State::Running) return;
    if (before == State::Stopping) {
        if (connected_) SubscribeAll();
        return;
    }
    was_lost_ = false;
    last_loss_.clear();
    last_delay_ = Milliseconds(0);
    next_delay_ = kFirstDelay;
    statistics_timer_.SetEnabled(true);
    Attempt();
}

void XMLBusClient::Impl::Stop() {
    if (state_ != State::Running) return;
    const auto self = face_.shared_from_this();
    state_ = State::Stopping;
    // Messages that are shared go to the others from here on. What is on its way to this client and answers
    // to it still arrive, and the hub sees a client that is there until its last word has been said.
    if (connected_) UnsubscribeAllButReply();
    const auto written_out = [this] { return queue.Empty() && transport_->Flushed(); };
    if (!connected_ && !written_out()) Attempt();
    WriteWhileThereIsRoom();
    platform_->Loop()->RunUntil([&] { return state_ != State::Stopping || written_out(); },
                                platform_->Loop()->Now() + kStopTime);
    if (state_ == State::Stopping) Close();
}

void XMLBusClient::Impl::Close() {
    state_ = State::Stopped;
    platform_->Loop()->CancelTimer(retry_);
    statistics_timer_.SetEnabled(false);
    transport_->Close();
    if (std::exchange(connected_, false)) face_.ConnectionChanged(false, "The bus client was stopped");
    face_.StatisticsEvent(Statistics());
}

void XMLBusClient::Impl::AddSubscription(const BusAddress& address, BusSubscription option) {
    BusNameOf(address);  // raises for what is no address
    if (address == reply || (option != BusSubscription::Ordinary && option != BusSubscription::Shared)) {
        Raise(RuntimeError::InvalidProcedureCall);
    }
    subscriptions_[address] = option;
    if (Running() && connected_) transport_->Subscribe(address, option);
}

void XMLBusClient::Impl::RemoveSubscription(const BusAddress& address) {
    if (subscriptions_.erase(address) == 0) {
        Raise(RuntimeError::InvalidProcedureCall, "There is no subscription for this address");
    }
    if (Running() && connected_) transport_->Unsubscribe(address);
}

void XMLBusClient::Impl::SubscribeAll() {
    transport_->Subscribe(reply, BusSubscription::Ordinary);
    for (const auto& [address, option] : subscriptions_)
        transport_->Subscribe(address, option);
}

void XMLBusClient::Impl::UnsubscribeAllButReply() {
    for (const auto& [address, option] : subscriptions_)
        transport_->Unsubscribe(address);
}

void XMLBusClient::Impl::Send(const XMLMessage& message, Milliseconds expiry) {
    RequireSendable(message);
    if (expiry < kNoExpiry) {
        Raise(RuntimeError::InvalidProcedureCall, "A message expires in 0 or more milliseconds");
    }
    DropExpired();
    Sent(queue.Push(message, expiry == kNoExpiry
                                 ? SendQueue::kNever
                                 : platform_->Loop()->Now() + std::min(expiry, kLongestExpiry)));
}

void XMLBusClient::Impl::Send(const XMLMessage& message, const BusState& state) {
    RequireSendable(message);
    if (state.outdates < BusOutdates::Nothing || state.outdates > BusOutdates::Final) {
        Raise(RuntimeError::InvalidProcedureCall);
    }
    DropExpired();
    Sent(queue.Push(message, state));
}

void XMLBusClient::Impl::RequireSendable(const XMLMessage& message) const {
    if (!Running()) Raise(RuntimeError::InvalidProcedureCall, "The bus client is not running");
    if (message.Type().empty()) Raise(RuntimeError::InvalidProcedureCall);
    BusNameOf(message.Destination());  // raises for what is no address
    const auto estimate = SendQueue::Estimate(message);
    if ((estimate > kMaxMessage && message.ToBusXML().size() > kMaxMessage) ||
        (estimate > kMaxElements && SendQueue::Elements(message) > kMaxElements)) {
        Raise(NetError::MessageTooLong, kSource);
    }
}

// `replaced`: what the queue returned.
void XMLBusClient::Impl::Sent(std::int64_t replaced) {
    if (replaced < 0) Raise(NetError::NoBufferSpace, kSource, "Too many messages are queued for the bus");
    ++statistics_.sent;
    statistics_.replaced += replaced;
    WriteSoon();
}

void XMLBusClient::Impl::DropExpired() {
    statistics_.expired += queue.DropExpired(platform_->Loop()->Now());
}

BusStatistics XMLBusClient::Impl::Statistics() {
    DropExpired();
    auto statistics = statistics_;
    statistics.expired += transport_->Expired();
    statistics.waiting = static_cast<std::int64_t>(queue.Size());
    return statistics;
}

void XMLBusClient::Impl::WriteSoon() {
    if (std::exchange(write_posted_, true)) return;
    platform_->Loop()->Post(owner_.Bind([this] {
        write_posted_ = false;
        WriteWhileThereIsRoom();
    }));
}

void XMLBusClient::Impl::WriteWhileThereIsRoom() {
    DropExpired();
    while (connected_ && !queue.Empty() && transport_->HasRoom()) {
        const auto [message, expiry] = queue.Pop();
        transport_->Write(message.Destination(), message.ToBusXML(), expiry);
        ++statistics_.written;
    }
}

void XMLBusClient::Impl::OnReady() {
    const auto self = face_.shared_from_this();
    connected_ = true;
    connected_since_ = platform_->Loop()->Now();
    last_loss_.clear();
    if (was_lost_) ++statistics_.reconnects;
    if (Running()) SubscribeAll();
    WriteWhileThereIsRoom();
    face_.ConnectionChanged(true, std::string());
}

void XMLBusClient::Impl::OnLost(const std::string& text) {
    const auto self = face_.shared_from_this();
    const bool had_place = std::exchange(connected_, false);
    // A hub that takes the client in and drops it at once is no reason to start over with short delays.
    if (had_place && platform_->Loop()->Now() - connected_since_ >= last_delay_) next_delay_ = kFirstDelay;
    was_lost_ = was_lost_ || had_place;
    AttemptLater();
    const bool news = had_place || text != last_loss_;
    last_loss_ = text;
    if (news) face_.ConnectionChanged(false, text);
}

void XMLBusClient::Impl::Attempt() {
    platform_->Loop()->CancelTimer(retry_);
    transport_->Open();
}

void XMLBusClient::Impl::AttemptLater() {
    if (state_ == State::Stopping) next_delay_ = kFirstDelay;  // there is one second left
    last_delay_ = next_delay_;
    next_delay_ = std::min(next_delay_ * 2, kLongestDelay);
    platform_->Loop()->CancelTimer(retry_);
    retry_ = platform_->Loop()->StartTimer(last_delay_, owner_.Bind([this] { Attempt(); }));
}

void XMLBusClient::Impl::OnMessage(const std::string& text) {
    const auto self = face_.shared_from_this();
    const auto message = std::make_shared<XMLMessage>();
    try {
        message->LoadBusXML(text, {.bytes = kMaxMessage, .elements = kMaxElements});
    } catch (const Error&) {
        ++statistics_.malformed;
        return;
    }
    ++statistics_.received;
    bool handled = false;
    face_.ReceiveMessage(message, handled);
}

XMLBusClient::XMLBusClient() = default;
XMLBusClient::~XMLBusClient() = default;

std::shared_ptr<XMLBusClient> XMLBusClient::Create(PlatformPtr platform, BusSettings settings) {
    auto transport = HubTransport::Create(platform, settings);
    auto client = Create(std::move(platform), std::move(transport));
    client->impl_->hub = std::move(settings);
    return client;
}

std::shared_ptr<XMLBusClient> XMLBusClient::Create(PlatformPtr platform,
                                                   std::shared_ptr<BusTransport> transport) {
    if (transport == nullptr) {
        Raise(RuntimeError::InvalidProcedureCall, "A bus client needs a transport");
    }
    std::shared_ptr<XMLBusClient> client(new XMLBusClient);
    client->impl_ = std::make_unique<Impl>(*client, RequirePlatform(std::move(platform), "A bus client"),
                                           std::move(transport));
    return client;
}

const BusSettings& XMLBusClient::Hub() const {
    return impl_->hub;
}

void XMLBusClient::SetHub(BusSettings settings) {
    impl_->SetHub(std::move(settings));
}

bool XMLBusClient::Running() const {
    return impl_->Running();
}

bool XMLBusClient::Connected() const {
    return impl_->Connected();
}

void XMLBusClient::Start() {
    impl_->Start();
}

void XMLBusClient::Stop() {
    impl_->Stop();
}

void XMLBusClient::AddSubscription(const std::string& type, BusSubscription option,
                                   const std::string& subtype) {
    impl_->AddSubscription({type, subtype}, option);
}

void XMLBusClient::RemoveSubscription(const std::string& type, const std::string& subtype) {
    impl_->RemoveSubscription({type, subtype});
}

const std::string& XMLBusClient::ReplyType() const {
    return impl_->reply.type;
}

const std::string& XMLBusClient::ReplySubType() const {
    return impl_->reply.subtype;
}

const std::string& XMLBusClient::EnterpriseID() const {
    return impl_->enterprise_id;
}

void XMLBusClient::SetEnterpriseID(const std::string& id) {
    impl_->enterprise_id = id;
}

void XMLBusClient::Send(const XMLMessage& message, Milliseconds expiry) {
    impl_->Send(message, expiry);
}

void XMLBusClient::Send(const XMLMessage& message, const BusState& state) {
    impl_->Send(message, state);
}

BusStatistics XMLBusClient::Statistics() const {
    return impl_->Statistics();
}

void XMLBusClient::SetLimits(const Limits& limits) {
    impl_->queue.SetLimits(limits);
}

}  // namespace kq
