// A way to the bus that does what the test says: nothing is ready, lost or brought unless the test does it.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "libs/xmlbus/BusTransport.h"

namespace kq {

class ScriptedTransport final : public BusTransport {
 public:
    int opened = 0;
    int closed = 0;
    bool room = true;
    bool flushed = true;
    std::map<BusAddress, BusSubscription> subscriptions;
    std::vector<std::string> written;  // texts

    void BecomesReady() {
        subscriptions.clear();
        Ready();
    }
    void Fails(const std::string& text) { Lost(text); }
    void Brings(const std::string& text) { Message(text); }
    void HasRoomAgain() {
        room = true;
        Room();
    }

    void Open() override { ++opened; }
    void Close() override { ++closed; }
    void Subscribe(const BusAddress& address, BusSubscription option) override {
        subscriptions[address] = option;
    }
    void Unsubscribe(const BusAddress& address) override { subscriptions.erase(address); }
    bool HasRoom() const override { return room; }
    void Write(const BusAddress&, std::string text, EventLoop::TimePoint) override {
        written.push_back(std::move(text));
    }
    std::int64_t Expired() const override { return 0; }
    bool Flushed() const override { return flushed; }
};

}  // namespace kq
