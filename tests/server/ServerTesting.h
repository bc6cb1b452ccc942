// An application server between its clients and its login server, all of them real but the machine: the
// server under test, clients on the network in memory, and a login server at the other end of a bus in memory
// that says only what the test makes it say.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/KQAppSessServer.h>

#include "libs/xmlbus/LocalBus.h"
#include "session/SessionTesting.h"
#include "support/FakePlatform.h"

namespace kq {

using Fields = std::vector<std::pair<std::string, std::string>>;

XMLMessage MessageOf(const std::string& type, const Fields& fields = {}, const std::string& version = "1");

// Everything that the object raises, in order, as one line each: "Connected S17", "XMLBusReceive ASLogoutUser
// 0 ".
class HeardEvents {
 public:
    void ListenTo(KQAppSessServer& server);
    const std::vector<std::string>& All() const { return lines_; }
    // What followed the name in the events of that name.
    std::vector<std::string> Of(const std::string& name) const;
    void Clear() { lines_.clear(); }
    // Runs at the next event of the name, before it is noted; not again.
    void At(const std::string& name, std::function<void()> action) { actions_[name] = std::move(action); }

    std::vector<XMLMessage> sent;        // with XMLBusSend
    std::optional<Block> received_data;  // the latest

 private:
    void Note(const std::string& name, const std::string& rest);

    std::vector<std::string> lines_;
    std::map<std::string, std::function<void()>> actions_;
    Owner owner_;
};

// A client program's connection.
class TestClient {
 public:
    TestClient(FakePlatform& machine, std::int32_t port);

    void Sends(const XMLMessage& message, const std::string& tag = {});
    void SendsText(const std::string& text, const std::string& tag = {});  // as XML, whatever it is
    void SendsBytes(const std::string& bytes);
    void Registers(const std::string& session_id, const std::string& version = "1",
                   const std::string& app_id = "Demo", const std::string& locale = "1033",
                   const std::string& tag = {});
    void Leaves();

    std::vector<std::string> AnswerTypes() const;
    // The latest answer; an empty message when there was none.
    XMLMessage Answer() const { return answers_.empty() ? XMLMessage() : answers_.back(); }
    std::string AnswerTag() const { return tag_; }  // of the latest answer
    bool Connected() const { return connection_->Connected(); }

 private:
    FakePlatform& machine_;
    std::shared_ptr<APClient> connection_;
    std::vector<XMLMessage> answers_;
    std::string tag_;
    Owner owner_;
};

// The login server's place on the bus.
class TestLoginServer {
 public:
    TestLoginServer(FakePlatform& machine, LocalBus& bus);

    // What came for "ZEB", and what was told to all login servers.
    std::vector<XMLMessage> requests;
    std::vector<XMLMessage> announcements;
    XMLMessage Latest(const std::string& type) const;

    // Answers the latest registration request for the session.
    void Grants(const std::string& session_id,
                const Fields& session_info = {{"LoginID", "ann"}, {"UserUID", "55"}});
    void Refuses(const std::string& session_id, const std::string& code, const std::string& text);
    // Answers the latest request of the type as it asked to be answered.
    void Answers(const std::string& request_type, XMLMessage answer);
    void SaysToAll(XMLMessage message) { Says(std::move(message), {"AS", "Broadcast"}); }
    void Says(XMLMessage message, const BusAddress& destination);
    // The same, together with what is said next.
    void Mutters(XMLMessage message, const BusAddress& destination);

 private:
    XMLMessage RegistrationOf(const std::string& session_id) const;
    // What leads an answer back to the client that asked.
    static Fields Correlation(const XMLMessage& request);

    FakePlatform& machine_;
    std::shared_ptr<XMLBusClient> client_;
    Owner owner_;
};

struct TestApp final : AppObject {
    std::map<std::string, std::string, std::less<>> properties;
    bool fails = false;
    std::optional<std::string> Property(std::string_view name) const override {
        if (fails) Raise(RuntimeError::ObjectNotSet);
        const auto found = properties.find(name);
        return found == properties.end() ? std::nullopt : std::optional(found->second);
    }
};

class ServerTest : public testing::Test {
 protected:
    ServerTest();

    void Initialize(const std::string& app_id = "Demo", const std::string& interfaces = "1.0");
    // Initialised, listening, everything of it delivered and forgotten.
    void Listens();
    TestClient& Client();  // a new connection
    TestClient& RegisteredClient(const std::string& session_id);
    void Run() { machine_.loop->RunReady(); }
    void Forget();  // what was heard so far, on both sides
    KQAppSessServer& Server() { return *server_; }
    void FillBus(bool full);                                // a full bus takes no message
    std::string LatestInfo(const std::string& name) const;  // of the latest announcement
    // The sessions that an announcement lists.
    static std::vector<std::string> SessionsIn(const XMLMessage& announcement);
    static std::string StateOf(const XMLMessage& announcement);

    FakePlatform machine_;
    LocalBus bus_{machine_.platform};
    std::shared_ptr<XMLBusClient> bus_client_ = XMLBusClient::Create(machine_.platform, bus_.MakeTransport());
    std::shared_ptr<TestApp> app_ = std::make_shared<TestApp>();
    std::shared_ptr<Statistics> statistics_ = std::make_shared<Statistics>();
    TestLoginServer zeb_{machine_, bus_};
    HeardEvents heard_;
    std::vector<bool> handled_;  // one for each message that reached the bus client
    std::unique_ptr<KQAppSessServer> server_;

 private:
    std::vector<std::unique_ptr<TestClient>> clients_;
    Owner owner_;
};

}  // namespace kq
