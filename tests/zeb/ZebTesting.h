// A login server in a machine without sockets, threads or real time, and the clients and application servers
// that talk to it.
#pragma once

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <spdlog/sinks/ostream_sink.h>

#include <kqappsession/APClient.h>
#include <kqappsession/XMLBusClient.h>

#include "libs/xmlbus/LocalBus.h"
#include "messages/ASMessages.h"
#include "support/FakePlatform.h"
#include "zeb/ExpectError.h"
#include "zeb/Zeb.h"

namespace kq::zeb {

inline constexpr const char* kApp = "Demo";
inline constexpr const char* kPassword = "correct horse";

// Hashes that show the password, so that a test can tell them apart, and a count of the work done.
class CountingHasher final : public PasswordHasher {
 public:
    mutable int hashed = 0;
    mutable int verified = 0;
    mutable std::size_t longest = 0;  // of the passwords that were verified, in bytes
    bool out_of_memory = false;

    std::string Hash(const Secret& password) const override {
        ++hashed;
        return "hash of " + password.Reveal();
    }
    bool Verify(const std::string& hash, const Secret& password) const override {
        ++verified;
        longest = std::max(longest, password.Reveal().size());
        if (out_of_memory) throw std::runtime_error("no memory");
        return hash == "hash of " + password.Reveal();
    }
};

// Runs work at once, or holds it until it is told.
class TestExecutor final : public Executor {
 public:
    bool full = false;
    bool hold = false;

    bool Submit(Work work) override {
        if (full) return false;
        if (hold) {
            held_.push_back(std::move(work));
        } else {
            work();
        }
        return true;
    }
    void RunHeld() {
        for (auto& work : std::exchange(held_, {}))
            work();
    }

 private:
    std::vector<Work> held_;
};

// An application server as the login server sees it: a peer of the bus that announces itself and keeps what
// it hears.
class TestAppServer {
 public:
    TestAppServer(const FakePlatform& machine, LocalBus& bus, std::string app_id, std::int32_t port);

    ASBroadcastInfo Info(const std::string& state, std::vector<std::string> sessions) const;
    void Announce(std::vector<std::string> sessions = {}) { Say(Info("C", std::move(sessions))); }
    void Say(const ASBroadcastInfo& info);
    // Asks whether a session is good, as for the client connection of that name.
    void AskToRegister(const std::string& session_id, const std::string& connection = "1",
                       const std::string& tag = {});
    // A client's request, relayed.
    void Relay(const XMLMessage& request, const std::string& connection = "1", const std::string& tag = {});
    // What was heard, oldest first, apart from requests for an announcement.
    std::vector<XMLMessage> heard;
    std::vector<XMLMessage> announcement_requests;
    // One message was heard since the last call: this one.
    XMLMessage ExpectHeard();
    BusAddress Reply() const { return {bus_client->ReplyType(), bus_client->ReplySubType()}; }

    std::string address = "192.0.2.10";
    std::string interval = "30";
    std::vector<std::string> interface_versions = {"1.0"};
    std::shared_ptr<XMLBusClient> bus_client;

 private:
    void Send(XMLMessage message, const BusAddress& destination);

    const FakePlatform& machine_;
    std::string app_id_;
    std::int32_t port_;
    Owner owner_;
};

class ZebTest : public testing::Test {
 protected:
    explicit ZebTest(const std::string& database = ":memory:") : store(database) {}
    void StartZeb(const ZebSettings& settings = {});
    std::int32_t AddUser(const std::string& login, const std::string& password = kPassword,
                         const Account& details = {});
    std::unique_ptr<TestAppServer> NewServer(std::int32_t port = 7000, const std::string& app_id = kApp);
    // One that has announced itself.
    std::unique_ptr<TestAppServer> RunningServer(std::int32_t port = 7000, const std::string& app_id = kApp);

    std::shared_ptr<APClient> NewClient();
    XMLMessage Ask(const XMLMessage& request) { return NewClient()->Request(request); }
    ASLoginResponse Login(const std::string& login, const std::string& password = kPassword,
                          const std::string& new_password = {});
    ASLoginResponse Login(const ASLoginRequest& request) {
        return ASLoginResponse::Read(Ask(request.Build()));
    }
    ASLoginRequest LoginRequest(const std::string& login, const std::string& password = kPassword) const;
    // Logs in and has the server register the session; the session's id.
    std::string ExpectRegistered(const std::string& login, TestAppServer& server,
                                 const std::string& connection = "1");
    void Pass(Milliseconds time) { machine.loop->Advance(time); }
    std::string Log() const { return log_text.str(); }

    FakePlatform machine{FakePlatform::Face::None};
    Store store;
    CountingHasher hasher;
    TestExecutor executor;
    LocalBus bus{machine.platform};
    std::ostringstream log_text;
    std::unique_ptr<Zeb> zeb;
};

}  // namespace kq::zeb
