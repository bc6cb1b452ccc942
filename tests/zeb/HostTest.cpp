// zebd as a whole, on this machine's own network and threads: from the configuration to a login.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spdlog/sinks/null_sink.h>

#include <kqappsession/Error.h>

#include "tools/program/KeyFile.h"
#include "zeb/ExpectError.h"
#include "zeb/Host.h"
#include "zeb/TemporaryFolder.h"
#include "zeb/admin/Admin.h"

namespace kq::zeb {
namespace {

class ZebHost : public testing::Test {
 protected:
    ZebHost() {
        InitData(folder.Path("data"));
        config.data = folder.Path("data");
        config.port = config.bus_port = 0;
        config.password_passes = config.password_memory = 1;
    }
    std::unique_ptr<Host> Start() {
        const auto sink = std::make_shared<spdlog::sinks::null_sink_mt>();
        return std::make_unique<Host>(platform, config, std::make_shared<spdlog::logger>("zebd", sink));
    }
    void ExpectNotStarted(std::int32_t number, const std::string& source, const std::string& description) {
        ExpectError([this] { Start(); }, number, source, description);
    }
    void AddAna() {
        Account account;
        account.login = "ana";
        AddUser(*OpenData(config.data), Argon2Hasher({.passes = 1, .memory = 8192}), account,
                Secret("correct horse"));
    }
    // Announces an application server on the bus and waits until the login server knows it.
    std::shared_ptr<XMLBusClient> Announce(const Host& host, const std::string& key = {});
    bool Serves(const Host& host);
    XMLMessage Ask(const Host& host, const XMLMessage& request) {
        const auto client = APClient::Create(platform);
        client->SetReceiveMode(ReceiveMode::Take);
        client->Connect("127.0.0.1", host.Port(), "", 0);
        return client->Request(request);
    }

    TemporaryFolder folder;
    Config config;
    PlatformPtr platform = MakePlatform();
    Owner owner;
};

std::shared_ptr<XMLBusClient> ZebHost::Announce(const Host& host, const std::string& key) {
    auto client = XMLBusClient::Create(platform, BusSettings{"127.0.0.1", host.BusPort(), key});
    ApplicationInfo application;
    application.AppID = "Demo";
    application.Port = "7000";
    application.Address = "127.0.0.1";
    application.InterfaceVersions = {"1.0"};
    application.InfoState = "C";
    ASBroadcastInfo info;
    info.ASRequestInfo = ASRequestInfo{client->ReplyType(), client->ReplySubType()};
    info.ApplicationInfos = ApplicationInfos{application};
    auto message = info.Build();
    message.SetDestination({"ZEB", "Broadcast"});
    // Whoever of the two comes to the bus last is heard by the other.
    client->AddSubscription("AS", BusSubscription::Ordinary, "Broadcast");
    client->ReceiveMessage.Connect(owner, [client = client.get(), message](const auto& request, bool&) {
        if (request->Type() == RequestBroadcastAS::kType) client->Send(message);
    });
    client->Start();
    client->Send(message);
    const auto deadline = platform->Loop()->Now() + std::chrono::seconds(20);
    while (!Serves(host) && platform->Loop()->Now() < deadline) {
    }
    return client;
}

bool ZebHost::Serves(const Host& host) {
    ASValidateClientRequest request;
    request.AppID = "Demo";
    request.InterfaceVersion = "1.0";
    return Ask(host, request.Build()).Field("InterfaceAvailable") == "True";
}

TEST_F(ZebHost, LogsInAUserOfItsDatabase) {
    AddAna();
    const auto host = Start();
    const auto server = Announce(*host);
    ASLoginRequest request;
    request.AppID = "Demo";
    request.LoginID = "ana";
    request.Password = Secret("correct horse");
    const auto reply = Ask(*host, request.Build());
    ExpectGranted(reply);
    EXPECT_EQ(reply.Field("Port"), "7000");
    request.Password = Secret("wrong horse");
    ExpectRefused(Ask(*host, request.Build()), Refusal::UnknownUser);
    host->Stop();
}

TEST_F(ZebHost, CarriesABusWithAKey) {
    config.bus_key_file = folder.Path("key");
    MakeKeyFile(config.bus_key_file);
    const auto host = Start();
    const auto server = Announce(*host, ReadKeyFile(config.bus_key_file).Reveal());
    EXPECT_TRUE(Serves(*host));
    host->Stop();
}

TEST_F(ZebHost, NeedsAKeyFileThatHoldsAKey) {
    config.bus_key_file = folder.Path("key");
    ExpectNotStarted(ENOENT, "KeyFile",
                     "The key file " + config.bus_key_file +
                         " cannot be read: No such file or directory; 'zebctl bus-key' makes one");
}

TEST_F(ZebHost, DoesNotUseAnApplicationServerThatHasLostTheBus) {
    const auto host = Start();
    const auto start = platform->Loop()->Now();
    auto server = Announce(*host);
    ASSERT_TRUE(Serves(*host));
    owner.Cancel();
    server.reset();
    const auto deadline = start + std::chrono::seconds(20);
    while (Serves(*host) && platform->Loop()->Now() < deadline) {
    }
    EXPECT_FALSE(Serves(*host));
    host->Stop();
}

TEST_F(ZebHost, NeedsADatabase) {
    config.data = folder.Path("none");
    ExpectNotStarted(
        NumberOf(RuntimeError::InvalidProcedureCall), "zebctl",
        "There is no database in " + config.data + "; 'zebctl init --data " + config.data + "' makes one");
}

TEST_F(ZebHost, HasItsDataFolderForItself) {
    const auto host = Start();
    ExpectNotStarted(EWOULDBLOCK, "zebd", "Another zebd is running with the data in " + config.data);
}

TEST_F(ZebHost, NamesTheAddressThatIsTaken) {
    const auto host = Start();
    InitData(folder.Path("second"));
    config.data = folder.Path("second");
    config.port = host->Port();
    ExpectNotStarted(static_cast<std::int32_t>(NetError::AddressInUse), "KQAppProtocolLib",
                     "127.0.0.1:" + std::to_string(config.port) + ": The address is already in use");
}

TEST_F(ZebHost, OffersNoBusWithoutAKeyToOtherMachines) {
    for (const std::string address : {"0.0.0.0", "", "::", "192.0.2.10"}) {
        config.bus_address = address;
        const std::string shown = address.empty() ? "*" : address == "::" ? "[::]" : address;
        ExpectNotStarted(
            NumberOf(RuntimeError::InvalidProcedureCall), std::string(kLibrarySource),
            shown +
                ":0: A hub without a key listens on loopback only: give it a key, or the address 127.0.0.1");
    }
}

}  // namespace
}  // namespace kq::zeb
