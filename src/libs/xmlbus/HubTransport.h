// The way to a hub over TCP: connects, proves the key, and writes what the hub has not yet confirmed a second
// time when the connection is lost.
#pragma once

#include <deque>
#include <memory>
#include <string>

#include <kqappsession/APClient.h>
#include <kqappsession/Secret.h>

#include "libs/xmlbus/BusControl.h"
#include "libs/xmlbus/BusTransport.h"

namespace kq {

class HubTransport final : public BusTransport, public std::enable_shared_from_this<HubTransport> {
 public:
    static std::shared_ptr<HubTransport> Create(PlatformPtr platform, BusSettings settings);
    ~HubTransport() override;

    void Open() override;
    void Close() override;
    void Subscribe(const BusAddress& address, BusSubscription option) override;
    void Unsubscribe(const BusAddress& address) override;
    bool HasRoom() const override;
    void Write(const BusAddress& destination, std::string text, EventLoop::TimePoint expiry) override;
    std::int64_t Expired() const override { return expired_; }
    bool Flushed() const override { return unconfirmed_.empty(); }

 private:
    enum class State { Closed, Connecting, Greeting, Proving, Open };
    struct Written {
        std::string name;
        std::string text;
        EventLoop::TimePoint expiry;
    };

    HubTransport(PlatformPtr platform, BusSettings settings);

    void OnConnected();
    void OnBlock(const Block& block);
    void OnControl(const XMLMessage& message);
    void OnChallenge(const XMLMessage& message);
    void OnWelcome(const XMLMessage& message);
    void OnTaken(const XMLMessage& message);
    bool Confirm(std::int64_t taken);
    void WriteAgain();
    void DropExpired();
    void Send(const XMLMessage& control);
    void SendWritten(const Written& written);
    // The sentence is told, if nothing else comes up, when `time` has passed.
    void ExpectAnswerWithin(Milliseconds time, const char* else_text);
    void ExpectNothing();
    void FailSoon(const std::string& text);
    void Fail(const std::string& text);

    PlatformPtr platform_;
    std::string address_;
    std::int32_t port_;
    Secret key_;
    State state_ = State::Closed;
    bool writing_again_ = false;  // the old messages come before new ones
    BusGreeting greeting_;
    std::shared_ptr<APClient> connection_;
    EventLoop::TimerId deadline_ = 0;
    std::deque<Written> unconfirmed_;
    std::size_t unconfirmed_bytes_ = 0;
    std::int64_t confirmed_ = 0;  // messages in this object's life
    std::int64_t expired_ = 0;
    Owner attempt_;  // of one Open
};

}  // namespace kq
