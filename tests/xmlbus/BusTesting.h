// Words for tests of the bus: parties that send and hear, and the messages they send.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/XMLBusClient.h>

namespace kq {

inline const BusAddress kZeb{"ZEB", ""};
inline const BusAddress kBroadcast{"AS", "Broadcast"};

// An ordinary message that is told apart by its text.
inline XMLMessage Note(const std::string& text, const BusAddress& to = kZeb) {
    XMLMessage message("Note", "1");
    message.SetDestination(to);
    message.SetField("Text", text);
    return message;
}

// A state: 'C' outdates the earlier ones, 'E' outdates nothing, 'D' is final.
inline BusState StateOf(char letter, const std::string& subject = "Demo") {
    const auto outdates = letter == 'C'   ? BusOutdates::Earlier
                          : letter == 'E' ? BusOutdates::Nothing
                                          : BusOutdates::Final;
    return {subject, outdates};
}

// A bus client and what it has heard.
class Party {
 public:
    explicit Party(std::shared_ptr<XMLBusClient> bus_client) : client(std::move(bus_client)) {
        client->ReceiveMessage.Connect(owner_, [this](const XMLBusClient::MessagePtr& message, bool&) {
            heard.push_back(message->Field("Text"));
        });
        client->ConnectionChanged.Connect(owner_, [this](bool there, const std::string& text) {
            changes.push_back(there ? "there" : text);
        });
        client->StatisticsEvent.Connect(owner_, [this](const BusStatistics& s) { statistics.push_back(s); });
    }

    void Hears(const BusAddress& address, BusSubscription option = BusSubscription::Ordinary) {
        client->AddSubscription(address.type, option, address.subtype);
    }
    void HearsNoMore(const BusAddress& address) { client->RemoveSubscription(address.type, address.subtype); }
    BusAddress ReplyAddress() const { return {client->ReplyType(), client->ReplySubType()}; }
    void Says(const std::string& text, const BusAddress& to = kZeb) { client->Send(Note(text, to)); }
    void States(char letter, const std::string& text) { client->Send(Note(text), StateOf(letter)); }

    std::shared_ptr<XMLBusClient> client;
    std::vector<std::string> heard;
    std::vector<std::string> changes;
    std::vector<BusStatistics> statistics;

 private:
    Owner owner_;
};

// The number of the Error that `action` raises; 0 when it raises none.
template <class Action>
std::int32_t ErrorOf(Action action) {
    try {
        action();
        return 0;
    } catch (const Error& error) {
        return error.Number();
    }
}

inline std::int32_t NumberOf(NetError error) {
    return static_cast<std::int32_t>(error);
}

}  // namespace kq
