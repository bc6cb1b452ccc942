// Messages are counted on both sides. The hub confirms how many it has taken; after a reconnection it says
// the count again, so that a message is neither lost with the connection nor taken twice.
#include "libs/xmlbus/HubTransport.h"

#include <utility>

#include <kqappsession/Error.h>

#include "libs/xmlbus/BusNames.h"
#include "platform/Crypto.h"
#include "platform/Machine.h"

namespace kq {
namespace {

constexpr std::int32_t kConnectTime = 5'000;  // ms
constexpr Milliseconds kGreetingTime{10'000};
constexpr Milliseconds kConfirmTime{30'000};
// What may be on its way unconfirmed: enough to keep the wire busy, little enough that state messages wait
// here rather than there. One message may be larger.
constexpr std::size_t kUnconfirmedMessages = 1'000;
constexpr std::size_t kUnconfirmedBytes = 256U << 10;
constexpr std::size_t kUnsent = 4 * XMLBusClient::kMaxMessage;
constexpr char kBrokenProtocol[] = "The other side does not speak the protocol of the bus";

}  // namespace

std::shared_ptr<HubTransport> HubTransport::Create(PlatformPtr platform, BusSettings settings) {
    return std::shared_ptr<HubTransport>(
        new HubTransport(RequirePlatform(std::move(platform), "A bus client"), std::move(settings)));
}

HubTransport::HubTransport(PlatformPtr platform, BusSettings settings)
    : platform_(std::move(platform)),
      address_(std::move(settings.address)),
      port_(settings.port),
      key_(std::move(settings.key)) {
    greeting_.client = platform_->Parts().crypto->RandomHex(kBusRandomBytes / 2);
}

HubTransport::~HubTransport() {
    Close();
}

void HubTransport::Open() {
    if (state_ != State::Closed) return;
    state_ = State::Connecting;
    connection_ = APClient::Create(platform_);
    auto limits = connection_->Limits();
    limits.admitted_frame = kMaxBusControl;  // until the hub has proven the key
    limits.raw_frame = kMaxBusControl;       // the bus has none
    limits.unsent = kUnsent;
    connection_->SetLimits(limits);
    connection_->SetSendType(DataType::XML);
    connection_->SetReceiveType(DataType::Any);
    connection_->SetKeepAlive(true);
    connection_->Receive.Connect(attempt_, [this](const Block& block) { OnBlock(block); });
    connection_->Error.Connect(attempt_, [this](std::int32_t, const std::string& text) { Fail(text); });
    connection_->Disconnected.Connect(attempt_, [this] { Fail("The hub has ended the connection"); });
    connection_->ConnectEnded.Connect(attempt_, [this](std::int32_t error, const std::string& text) {
        error == 0 ? OnConnected() : Fail(text);
    });
    try {
        connection_->BeginConnect(address_, port_, std::string(), kConnectTime);
    } catch (const Error& error) {
        FailSoon(error.Description());
    }
}

void HubTransport::Close() {
    attempt_.Cancel();
    ExpectNothing();
    state_ = State::Closed;
    if (const auto connection = std::exchange(connection_, nullptr)) connection->Disconnect();
}

void HubTransport::OnConnected() {
    state_ = State::Greeting;
    ExpectAnswerWithin(kGreetingTime, "The hub does not answer");
    greeting_.nonce = platform_->Parts().crypto->RandomHex(kBusRandomBytes);
    Send(BusHello{greeting_.client, greeting_.nonce, confirmed_}.Build());
}

void HubTransport::OnBlock(const Block& block) {
    const auto self = shared_from_this();
    const auto connection = connection_;
    if (block.data_type != DataType::XML) return Fail(kBrokenProtocol);
    if (block.tag.empty()) {
        XMLMessage message;
        try {
            message = ParseBusControl(block.data);
        } catch (const Error&) {
            return Fail(kBrokenProtocol);
        }
        OnControl(message);
    } else if (state_ == State::Open) {
        Message(block.data);
    } else {
        Fail(kBrokenProtocol);
    }
}

void HubTransport::OnControl(const XMLMessage& message) {
    if (message.Type() == BusRefused::kType) {
        Fail("The hub refuses this client: " + BusRefused::Read(message).ErrorDesc);
    } else if (message.Type() == BusChallenge::kType && state_ == State::Greeting) {
        OnChallenge(message);
    } else if (message.Type() == BusWelcome::kType && state_ == State::Proving) {
        OnWelcome(message);
    } else if (message.Type() == BusTaken::kType && state_ == State::Open) {
        OnTaken(message);
    } else {
        Fail(kBrokenProtocol);
    }
}

void HubTransport::OnChallenge(const XMLMessage& message) {
    greeting_.challenge = BusChallenge::Read(message).Challenge;
    if (greeting_.challenge.empty() || greeting_.challenge.size() > kMaxBusRandomText)
        return Fail(kBrokenProtocol);
    state_ = State::Proving;
    const auto proof = BusProofOf(*platform_->Parts().crypto, key_.Reveal(), kPeerRole, greeting_);
    Send(BusProof{proof}.Build());
}

void HubTransport::OnWelcome(const XMLMessage& message) {
    const auto welcome = BusWelcome::Read(message);
    const auto proof = BusProofOf(*platform_->Parts().crypto, key_.Reveal(), kHubRole, greeting_);
    if (!platform_->Parts().crypto->EqualConstantTime(proof, welcome.Proof)) {
        return Fail("The hub does not know the key of this bus");
    }
    if (!Confirm(welcome.Taken)) return Fail(kBrokenProtocol);
    ExpectNothing();
    auto limits = connection_->Limits();
    limits.admitted_frame = XMLBusClient::kMaxMessage;
    connection_->SetLimits(limits);
    state_ = State::Open;
    writing_again_ = true;
    // By a task: subscriptions are made first, and a handler of Ready that waits does not hold the messages
    // back.
    platform_->Loop()->Post(attempt_.Bind([this] { WriteAgain(); }));
    Ready();
}

void HubTransport::WriteAgain() {
    const auto self = shared_from_this();
    writing_again_ = false;
    DropExpired();
    for (const auto& written : unconfirmed_)
        SendWritten(written);
    Room();
}

// Only right after the hub's count is known: the hub has none of what is unconfirmed then, and both sides
// count on from the same number whatever is left out.
void HubTransport::DropExpired() {
    const auto now = platform_->Loop()->Now();
    expired_ += static_cast<std::int64_t>(std::erase_if(unconfirmed_, [&](const Written& written) {
        const bool expired = written.expiry <= now;
        if (expired) unconfirmed_bytes_ -= written.text.size();
        return expired;
    }));
}

void HubTransport::OnTaken(const XMLMessage& message) {
    if (!Confirm(BusTaken::Read(message).Taken)) return Fail(kBrokenProtocol);
    ExpectNothing();
    if (!unconfirmed_.empty()) ExpectAnswerWithin(kConfirmTime, "The hub has stopped confirming messages");
    Room();
}

bool HubTransport::Confirm(std::int64_t taken) {
    if (taken < confirmed_ || taken - confirmed_ > static_cast<std::int64_t>(unconfirmed_.size()))
        return false;
    for (; confirmed_ < taken; ++confirmed_) {
        unconfirmed_bytes_ -= unconfirmed_.front().text.size();
        unconfirmed_.pop_front();
    }
    return true;
}

void HubTransport::Subscribe(const BusAddress& address, BusSubscription option) {
    Send(BusSubscribe{address.type, address.subtype, static_cast<std::int64_t>(option)}.Build());
}

void HubTransport::Unsubscribe(const BusAddress& address) {
    Send(BusUnsubscribe{address.type, address.subtype}.Build());
}

bool HubTransport::HasRoom() const {
    return state_ == State::Open && !writing_again_ && unconfirmed_.size() < kUnconfirmedMessages &&
           unconfirmed_bytes_ < kUnconfirmedBytes;
}

void HubTransport::Write(const BusAddress& destination, std::string text, EventLoop::TimePoint expiry) {
    unconfirmed_bytes_ += text.size();
    unconfirmed_.push_back({BusNameOf(destination), std::move(text), expiry});
    if (state_ == State::Open && !writing_again_) SendWritten(unconfirmed_.back());
}

void HubTransport::SendWritten(const Written& written) {
    if (state_ != State::Open) return;
    if (deadline_ == 0) ExpectAnswerWithin(kConfirmTime, "The hub has stopped confirming messages");
    try {
        connection_->SendText(written.text, written.name);
    } catch (const Error& error) {
        FailSoon(error.Description());
    }
}

void HubTransport::Send(const XMLMessage& control) {
    if (connection_ == nullptr) return;
    try {
        connection_->SendText(control.ToBusXML());
    } catch (const Error& error) {
        FailSoon(error.Description());
    }
}

void HubTransport::ExpectAnswerWithin(Milliseconds time, const char* else_text) {
    platform_->Loop()->CancelTimer(deadline_);
    deadline_ = platform_->Loop()->StartTimer(time, attempt_.Bind([this, else_text] { Fail(else_text); }));
}

void HubTransport::ExpectNothing() {
    platform_->Loop()->CancelTimer(std::exchange(deadline_, 0));
}

void HubTransport::FailSoon(const std::string& text) {
    platform_->Loop()->Post(attempt_.Bind([this, text] { Fail(text); }));
}

void HubTransport::Fail(const std::string& text) {
    const auto self = shared_from_this();
    // The event's own text may go with the connection.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const std::string sentence = text;
    Close();
    Lost(sentence);
}

}  // namespace kq
