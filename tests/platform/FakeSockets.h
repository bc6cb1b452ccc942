// Sockets that a test plays the system for: every call succeeds or answers with the error that the test
// wants, and a loop that calls watches when the test says so.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/EventLoop.h>

#include "platform/net/SocketCalls.h"
#include "support/FakeEventLoop.h"

namespace kq {

// The calls by name; what a test makes fail.
enum class SocketCall { Open, Bind, Connect, ConnectError, PrepareListener, Listen, Accept, Receive, Send };

class FakeSockets final : public SocketCalls {
 public:
    // From now on the call answers with this error; 0: it succeeds.
    void Fail(SocketCall call, std::int32_t error) { errors_[call] = error; }
    // The next read gives these bytes.
    void Arrive(const std::string& bytes) { arriving_ += bytes; }
    void EndOfPeer() { ended_ = true; }
    // No socket is for addresses with a colon.
    void LackIPv6(std::int32_t error) { no_ipv6_ = error; }

    const std::string& Sent() const { return sent_; }
    const std::string& Unread() const { return arriving_; }
    const std::string& LastBound() const { return bound_; }
    int OpenSockets() const { return opened_ - closed_; }
    int Shutdowns() const { return shutdowns_; }
    bool KeptAlive() const { return kept_alive_; }
    void HasAddresses(std::vector<std::string> own) { own_addresses_ = std::move(own); }

    // An address is its text.
    std::optional<SocketAddress> Parse(const std::string& text, int) override {
        if (text.empty() || text.find_first_not_of("0123456789abcdef.:") != std::string::npos)
            return std::nullopt;
        SocketAddress address;
        address.length = static_cast<std::uint32_t>(text.size());
        std::ranges::copy(std::as_bytes(std::span(text)), address.bytes.begin());
        return address;
    }
    bool SameFamily(const SocketAddress& one, const SocketAddress& other) override {
        return IsIPv6(one) == IsIPv6(other);
    }

    Opened Open(const SocketAddress& family) override {
        if (no_ipv6_ != 0 && IsIPv6(family)) return {kNone, no_ipv6_};
        return New(SocketCall::Open);
    }
    std::int32_t Bind(Socket, const SocketAddress& address) override {
        bound_ = Text(address);
        return errors_[SocketCall::Bind];
    }
    std::int32_t Connect(Socket, const SocketAddress&) override { return errors_[SocketCall::Connect]; }
    std::int32_t ConnectError(Socket) override { return errors_[SocketCall::ConnectError]; }
    std::int32_t PrepareListener(Socket, const SocketAddress&, bool) override {
        return errors_[SocketCall::PrepareListener];
    }
    std::int32_t Listen(Socket) override { return errors_[SocketCall::Listen]; }
    Accepted Accept(Socket) override {
        const Opened accepted = New(SocketCall::Accept);
        return {accepted.socket, accepted.error, {"192.0.2.9", 1999}};
    }

    Moved Receive(Socket, std::span<std::byte> buffer) override {
        if (const std::int32_t error = errors_[SocketCall::Receive]) return {0, error};
        if (arriving_.empty()) return {0, ended_ ? 0 : kWouldBlock};
        const std::size_t count = std::min(buffer.size(), arriving_.size());
        std::ranges::copy(std::as_bytes(std::span(arriving_)).first(count), buffer.begin());
        arriving_.erase(0, count);
        return {count, 0};
    }
    Moved Send(Socket, std::span<const std::byte> bytes) override {
        if (const std::int32_t error = errors_[SocketCall::Send]) return {0, error};
        sent_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return {bytes.size(), 0};
    }
    void FinishSending(Socket) override { ++shutdowns_; }
    void Close(Socket) override { ++closed_; }

    End LocalEnd(Socket) override { return {"::ffff:192.0.2.1", 1234}; }
    End RemoteEnd(Socket) override { return {"2001:db8::2", 5678}; }
    void SendWithoutDelay(Socket) override {}
    void SetKeepAlive(Socket, bool on) override { kept_alive_ = on; }
    std::vector<std::string> OwnAddresses() override { return own_addresses_; }

 private:
    static std::string Text(const SocketAddress& address) {
        return std::string(reinterpret_cast<const char*>(address.bytes.data()), address.length);
    }
    static bool IsIPv6(const SocketAddress& address) { return Text(address).find(':') != std::string::npos; }
    Opened New(SocketCall call) {
        if (const std::int32_t error = errors_[call]) return {kNone, error};
        return {static_cast<Socket>(++opened_), 0};
    }

    std::map<SocketCall, std::int32_t> errors_;
    std::string arriving_, sent_, bound_;
    std::int32_t no_ipv6_ = 0;
    int opened_ = 0, closed_ = 0, shutdowns_ = 0;
    bool ended_ = false, kept_alive_ = false;
    std::vector<std::string> own_addresses_;
};

// A loop in virtual time whose sockets become ready when the test says so.
class FakeSocketLoop final : public EventLoop {
 public:
    // Every socket is ready in this way: calls the watches that want it, once.
    void BecomeReady(Readiness ready) {
        const auto watches = watches_;
        for (const auto& [id, watched] : watches) {
            const auto found = watches_.find(id);
            if (found == watches_.end()) continue;
            const Readiness wanted = found->second.wanted;
            const Readiness now{ready.readable && wanted.readable, ready.writable && wanted.writable};
            if (now.readable || now.writable) watched.ready(now);
        }
    }
    bool WantsToRead() const {
        return std::ranges::any_of(watches_, [](const auto& entry) { return entry.second.wanted.readable; });
    }
    bool WantsToWrite() const {
        return std::ranges::any_of(watches_, [](const auto& entry) { return entry.second.wanted.writable; });
    }
    std::size_t WatchCount() const { return watches_.size(); }
    void Advance(Milliseconds span) { time_.Advance(span); }
    void RunReady() { time_.RunReady(); }

    TimePoint Now() const override { return time_.Now(); }
    void Post(Task task) override { time_.Post(std::move(task)); }
    TimerId StartTimer(Milliseconds delay, Task task) override {
        return time_.StartTimer(delay, std::move(task));
    }
    void CancelTimer(TimerId id) override { time_.CancelTimer(id); }
    WatchId Watch(NativeSocket, Readiness wanted, std::function<void(Readiness)> ready) override {
        watches_.emplace(++last_watch_, Watched{wanted, std::move(ready)});
        return last_watch_;
    }
    void ChangeWatch(WatchId id, Readiness wanted) override { watches_.at(id).wanted = wanted; }
    void Unwatch(WatchId id) override { watches_.erase(id); }
    void ProcessPending() override { time_.ProcessPending(); }
    bool RunUntil(const std::function<bool()>& done, TimePoint deadline) override {
        return time_.RunUntil(done, deadline);
    }
    void Run() override { time_.Run(); }
    void Quit() override { time_.Quit(); }
    bool Quitting() const override { return time_.Quitting(); }

 private:
    struct Watched {
        Readiness wanted;
        std::function<void(Readiness)> ready;
    };

    FakeEventLoop time_;
    std::map<WatchId, Watched> watches_;
    WatchId last_watch_ = 0;
};

}  // namespace kq
