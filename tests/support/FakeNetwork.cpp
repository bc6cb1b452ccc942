// Who listens where, and how a connection comes to stand.
#include "support/FakeNetwork.h"

#include <algorithm>
#include <deque>

#include "support/FakeFailure.h"
#include "support/FakeWire.h"

namespace kq {
namespace {

std::int32_t NumberOf(NetError error) {
    return static_cast<std::int32_t>(error);
}

bool IsNumeric(const std::string& address) {
    return !address.empty() && address.find_first_not_of("0123456789abcdefABCDEF.:") == std::string::npos &&
           address.find_first_of(".:") != std::string::npos;
}

bool IsAny(const std::string& address) {
    return address.empty() || address == "0.0.0.0" || address == "::";
}

}  // namespace

struct FakeNetwork::Station : std::enable_shared_from_this<Station> {
    std::shared_ptr<EventLoop> loop;
    std::string address;
    int port = 0;
    std::deque<std::shared_ptr<FakeWire>> waiting;
    std::shared_ptr<std::function<void()>> handler;
    bool posted = false;

    void PostWaiting() {
        if (posted || waiting.empty() || !handler) return;
        posted = true;
        loop->Post([weak = weak_from_this()] {
            const auto self = weak.lock();
            if (!self) return;
            self->posted = false;
            const auto call = self->handler;
            if (self->waiting.empty() || !call) return;
            (*call)();
            self->PostWaiting();
        });
    }
};

class FakeNetwork::Listener final : public ListenSocket {
 public:
    Listener(FakeNetwork* network, std::shared_ptr<Station> station)
        : network_(network), life_(network->owner_.Life()), station_(std::move(station)) {}

    ~Listener() override {
        for (const auto& wire : station_->waiting) {
            if (const auto caller = wire->Peer()) caller->Reset();
        }
        station_->waiting.clear();
        station_->handler.reset();
    }

    void SetHandler(std::function<void()> handler) override {
        station_->handler = handler ? std::make_shared<std::function<void()>>(std::move(handler)) : nullptr;
        station_->PostWaiting();
    }

    std::unique_ptr<StreamSocket> Accept(std::int32_t* error) override {
        if (error) *error = 0;
        if (!life_.expired() && network_->accept_error_ != 0) {
            const std::int32_t number = std::exchange(network_->accept_error_, 0);
            if (error) *error = number;
            return nullptr;
        }
        while (!station_->waiting.empty()) {
            const auto wire = station_->waiting.front();
            station_->waiting.pop_front();
            if (wire->GetState() == FakeWire::State::Open) return std::make_unique<FakeStream>(wire);
        }
        return nullptr;
    }

    std::string LocalAddress() const override {
        return station_->address.empty() ? "0.0.0.0" : station_->address;
    }
    int LocalPort() const override { return station_->port; }

 private:
    FakeNetwork* network_;
    std::weak_ptr<const void> life_;
    std::shared_ptr<Station> station_;
};

FakeNetwork::FakeNetwork(std::shared_ptr<EventLoop> loop) : loop_(std::move(loop)) {}

FakeNetwork::~FakeNetwork() = default;

void FakeNetwork::BlackHole(const std::string& address, int port) {
    black_holes_.insert({address, port});
}

void FakeNetwork::Split(std::size_t count) {
    split_ = count;
    for (const auto& weak : wires_) {
        if (const auto wire = weak.lock()) wire->split = count;
    }
}

void FakeNetwork::SetPipeSize(std::size_t size) {
    pipe_size_ = size;
    for (const auto& weak : wires_) {
        if (const auto wire = weak.lock()) wire->pipe_size = size;
    }
}

void FakeNetwork::Cut(StreamSocket& stream) {
    auto* const fake = dynamic_cast<FakeStream*>(&stream);
    if (!fake) throw FakeFailure("Cut was given a stream of another network");
    const auto peer = fake->Wire().Peer();
    fake->Wire().Reset();
    if (peer) peer->Reset();
}

void FakeNetwork::CutAll() {
    for (const auto& weak : std::vector(wires_)) {
        const auto wire = weak.lock();
        if (wire && wire->GetState() == FakeWire::State::Open) wire->Reset();
    }
}

std::size_t FakeNetwork::OpenStreams() const {
    return static_cast<std::size_t>(std::count_if(wires_.begin(), wires_.end(), [](const auto& weak) {
        const auto wire = weak.lock();
        return wire && wire->GetState() != FakeWire::State::Closed;
    }));
}

std::size_t FakeNetwork::KeptAliveStreams() const {
    return static_cast<std::size_t>(std::count_if(wires_.begin(), wires_.end(), [](const auto& weak) {
        const auto wire = weak.lock();
        return wire && wire->GetState() == FakeWire::State::Open && wire->keep_alive;
    }));
}

std::shared_ptr<FakeWire> FakeNetwork::NewWire() {
    std::erase_if(wires_, [](const auto& weak) { return weak.expired(); });
    auto wire = std::make_shared<FakeWire>(loop_, split_, pipe_size_);
    wires_.push_back(wire);
    return wire;
}

bool FakeNetwork::IsOwn(const std::string& address) const {
    return address == own_address_ || address == "::1" || address.rfind("127.", 0) == 0;
}

std::shared_ptr<FakeNetwork::Station> FakeNetwork::Find(const std::string& address, int port) const {
    for (const auto& weak : stations_) {
        const auto station = weak.lock();
        if (!station || station->port != port) continue;
        if (station->address == address || (IsAny(station->address) && (IsOwn(address) || IsAny(address)))) {
            return station;
        }
    }
    return nullptr;
}

std::unique_ptr<StreamSocket> FakeNetwork::Connect(const std::string& address, int port,
                                                   const std::string& local_address) {
    const Attempt attempt{address, port, local_address};
    attempts_.push_back(attempt);
    const auto wire = NewWire();
    if (black_holes_.count({address, port}) == 0) {
        loop_->Post(owner_.Bind([this, weak = std::weak_ptr(wire), attempt] {
            const auto caller = weak.lock();
            if (caller && caller->GetState() == FakeWire::State::Connecting)
                FinishConnecting(caller, attempt);
        }));
    }
    return std::make_unique<FakeStream>(wire);
}

void FakeNetwork::FinishConnecting(const std::shared_ptr<FakeWire>& caller, const Attempt& attempt) {
    if (!IsNumeric(attempt.address)) return caller->FailToConnect(NumberOf(NetError::InvalidArgument));
    if (attempt.port < 1 || attempt.port > 65535) {
        return caller->FailToConnect(NumberOf(NetError::AddressNotAvailable));
    }
    const auto station = Find(attempt.address, attempt.port);
    if (!station) return caller->FailToConnect(NumberOf(NetError::Refused));

    const auto called = NewWire();
    const bool loopback = attempt.address.rfind("127.", 0) == 0 || attempt.address == "::1";
    const std::string own = loopback ? attempt.address : own_address_;
    caller->local_address = attempt.local_address.empty() ? own : attempt.local_address;
    caller->local_port = next_port_++;
    caller->remote_address = attempt.address;
    caller->remote_port = attempt.port;
    called->local_address = caller->remote_address;
    called->local_port = caller->remote_port;
    called->remote_address = caller->local_address;
    called->remote_port = caller->local_port;
    FakeWire::Join(caller, called);
    station->waiting.push_back(called);
    station->PostWaiting();
    caller->AnnounceConnected();
}

std::unique_ptr<ListenSocket> FakeNetwork::Listen(const std::string& local_address, int port) {
    constexpr std::string_view kSource = "KQAppProtocolLib";
    if (listen_error_) Raise(*std::exchange(listen_error_, std::nullopt), kSource);
    if (!IsAny(local_address) && !IsNumeric(local_address)) Raise(NetError::AddressNotAvailable, kSource);
    if (port < 0 || port > 65535) Raise(NetError::InvalidArgument, kSource);
    std::erase_if(stations_, [](const auto& weak) { return weak.expired(); });
    for (const auto& weak : stations_) {
        const auto other = weak.lock();
        if (!other || port == 0 || other->port != port) continue;
        const bool own = IsAny(local_address) || IsOwn(local_address);
        const bool same = other->address == local_address || (IsAny(other->address) && own) ||
                          (IsAny(local_address) && IsOwn(other->address));
        if (same) Raise(NetError::AddressInUse, kSource);
    }
    auto station = std::make_shared<Station>();
    station->loop = loop_;
    station->address = local_address;
    station->port = port != 0 ? port : next_port_++;
    stations_.push_back(station);
    return std::make_unique<Listener>(this, station);
}

}  // namespace kq
