// The world of the login server's tests: its parts made and its parties given words.
#include "zeb/ZebTesting.h"

#include <utility>

namespace kq::zeb {

TestAppServer::TestAppServer(const FakePlatform& machine, LocalBus& bus, std::string app_id,
                             std::int32_t port)
    : bus_client(XMLBusClient::Create(machine.platform, bus.MakeTransport())),
      machine_(machine),
      app_id_(std::move(app_id)),
      port_(port) {
    bus_client->AddSubscription("AS", BusSubscription::Ordinary, "Broadcast");
    bus_client->ReceiveMessage.Connect(owner_, [this](const auto& message, bool& handled) {
        const bool request = message->Type() == RequestBroadcastAS::kType;
        (request ? announcement_requests : heard).push_back(*message);
        handled = true;
    });
    bus_client->Start();
    machine_.loop->RunReady();
}

ASBroadcastInfo TestAppServer::Info(const std::string& state, std::vector<std::string> sessions) const {
    ApplicationInfo application;
    application.AppID = app_id_;
    application.Port = std::to_string(port_);
    application.Address = address;
    application.BroadcastInterval = interval;
    application.InterfaceVersions = interface_versions;
    application.InfoState = state;
    if (state != "D") application.Sessions = std::move(sessions);
    ASBroadcastInfo info;
    info.ASRequestInfo = ASRequestInfo{bus_client->ReplyType(), bus_client->ReplySubType()};
    info.ApplicationInfos = ApplicationInfos{application};
    return info;
}

void TestAppServer::Say(const ASBroadcastInfo& info) {
    Send(info.Build(), {"ZEB", "Broadcast"});
}

void TestAppServer::AskToRegister(const std::string& session_id, const std::string& connection,
                                  const std::string& tag) {
    RequestASRegistration request;
    request.ReturnMsgType = bus_client->ReplyType();
    request.ReturnSubType = bus_client->ReplySubType();
    request.TransID = session_id + "|" + connection;
    request.AppID = app_id_;
    request.SessionID = session_id;
    request.ReturnTag = tag;
    Send(request.Build(), {"ZEB", ""});
}

void TestAppServer::Relay(const XMLMessage& request, const std::string& connection, const std::string& tag) {
    auto message = request.ToBusMessage(kZEBSchemas);
    message.SetField(kReturnMsgType, bus_client->ReplyType());
    message.SetField(kReturnSubType, bus_client->ReplySubType());
    message.SetField(kTransID, connection);
    if (!tag.empty()) message.SetField(kReturnTag, tag);
    if (!message.Field("RestrictIP").empty()) message.SetField("RestrictIP", address);
    Send(std::move(message), {"ZEB", ""});
}

XMLMessage TestAppServer::ExpectHeard() {
    EXPECT_EQ(heard.size(), 1U);
    const auto message = heard.empty() ? XMLMessage() : heard.front();
    heard.clear();
    return message;
}

void TestAppServer::Send(XMLMessage message, const BusAddress& destination) {
    message.SetDestination(destination);
    bus_client->Send(message);
    machine_.loop->RunReady();
}

void ZebTest::StartZeb(const ZebSettings& settings) {
    auto log =
        std::make_shared<spdlog::logger>("zebd", std::make_shared<spdlog::sinks::ostream_sink_mt>(log_text));
    log->set_level(spdlog::level::trace);
    zeb = std::make_unique<Zeb>(machine.platform, store, executor, hasher,
                                XMLBusClient::Create(machine.platform, bus.MakeTransport()), log, settings);
    zeb->Start();
    machine.loop->RunReady();
    hasher.hashed = 0;
}

std::int32_t ZebTest::AddUser(const std::string& login, const std::string& password, const Account& details) {
    Account account = details;
    account.login = login;
    account.password_hash = "hash of " + password;
    return Accounts(store).Add(account);
}

std::unique_ptr<TestAppServer> ZebTest::NewServer(std::int32_t port, const std::string& app_id) {
    return std::make_unique<TestAppServer>(machine, bus, app_id, port);
}

std::unique_ptr<TestAppServer> ZebTest::RunningServer(std::int32_t port, const std::string& app_id) {
    auto server = NewServer(port, app_id);
    server->Announce();
    return server;
}

std::shared_ptr<APClient> ZebTest::NewClient() {
    auto client = APClient::Create(machine.platform);
    client->SetReceiveMode(ReceiveMode::Take);
    client->SetSendType(DataType::XML);
    client->Connect("127.0.0.1", zeb->Port(), "", 0);
    return client;
}

ASLoginRequest ZebTest::LoginRequest(const std::string& login, const std::string& password) const {
    ASLoginRequest request;
    request.AppID = kApp;
    request.LoginID = login;
    request.Password = Secret(password);
    return request;
}

ASLoginResponse ZebTest::Login(const std::string& login, const std::string& password,
                               const std::string& new_password) {
    auto request = LoginRequest(login, password);
    request.NewPassword = Secret(new_password);
    return Login(request);
}

std::string ZebTest::ExpectRegistered(const std::string& login, TestAppServer& server,
                                      const std::string& connection) {
    const auto id = Login(login).SessionID;
    server.AskToRegister(id, connection);
    EXPECT_EQ(server.ExpectHeard().Field("ErrorResponse"), "");
    return id;
}

}  // namespace kq::zeb
