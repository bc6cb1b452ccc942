// A machine with a hub, and the clients that join it over the network in memory.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "libs/xmlbus/Hub.h"
#include "support/FakePlatform.h"
#include "xmlbus/BusTesting.h"
#include "xmlbus/StreamPeer.h"

namespace kq {

inline constexpr char kKey[] = "open sesame";

// A hub that does not listen yet.
struct HubBase : testing::Test {
    HubBase() {
        hub->Note.Connect(owner, [this](const std::string& text) { notes.push_back(text); });
    }
    std::unique_ptr<Party> Join(const std::string& key = kKey, const std::string& address = "127.0.0.1") {
        auto party =
            std::make_unique<Party>(XMLBusClient::Create(machine.platform, {address, hub->Port(), key}));
        party->client->Start();
        Settle();
        return party;
    }
    void Settle() { machine.loop->RunReady(); }
    void Pass(int milliseconds) { machine.loop->Advance(Milliseconds(milliseconds)); }

    FakePlatform machine;
    Owner owner;
    std::vector<std::string> notes;
    std::unique_ptr<Hub> hub = std::make_unique<Hub>(machine.platform);
};

// A hub that listens on loopback.
struct HubTest : HubBase {
    HubTest() { hub->Listen("127.0.0.1", 0, kKey); }
    // The same, with limits that a test can reach.
    void ListenWith(const Hub::Limits& limits) {
        hub->Stop();
        hub->SetLimits(limits);
        hub->Listen("127.0.0.1", 0, kKey);
    }
    // Reads what is refused, and the end.
    void ExpectRefused(const StreamPeer& peer, const std::string& text) {
        ASSERT_FALSE(peer.blocks.empty());
        EXPECT_EQ(peer.Last().Type(), BusRefused::kType);
        EXPECT_EQ(peer.Last().Field("ErrorDesc"), text);
        EXPECT_TRUE(peer.ended);
    }
};

}  // namespace kq
