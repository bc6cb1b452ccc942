// The actors of the application server's tests.
#include "server/ServerTesting.h"

#include <utility>

namespace kq {

XMLMessage MessageOf(const std::string& type, const Fields& fields, const std::string& version) {
    XMLMessage message(type, version);
    for (const auto& [name, value] : fields)
        message.SetField(name, value);
    return message;
}

void HeardEvents::Note(const std::string& name, const std::string& rest) {
    if (const auto action = std::exchange(actions_[name], nullptr)) action();
    lines_.push_back(rest.empty() ? name : name + " " + rest);
}

void HeardEvents::ListenTo(KQAppSessServer& server) {
    using SessionPtr = KQAppSessServer::SessionPtr;
    server.Connected.Connect(owner_, [this](const SessionPtr& s) { Note("Connected", s->SessionID()); });
    server.ReceivedData.Connect(owner_, [this](const SessionPtr& s, const Block& block) {
        received_data = block;
        Note("ReceivedData", s->SessionID());
    });
    server.Disconnected.Connect(owner_,
                                [this](const SessionPtr& s) { Note("Disconnected", s->SessionID()); });
    server.Error.Connect(owner_, [this](std::int32_t number, const std::string& description) {
        Note("Error", std::to_string(number) + " " + description);
    });
    server.SessionError.Connect(owner_, [this](const SessionPtr& s, const std::shared_ptr<APClient>& client,
                                               std::int32_t number, const std::string&) {
        EXPECT_EQ(s->Client(), client);
        Note("SessionError", s->SessionID() + " " + std::to_string(number));
    });
    server.XMLBusSend.Connect(owner_, [this](const KQAppSessServer::MessagePtr& message) {
        sent.push_back(*message);
        Note("XMLBusSend", message->Type());
    });
    server.XMLBusReceive.Connect(owner_, [this](const KQAppSessServer::MessagePtr& message,
                                                std::int32_t number, const std::string& description) {
        Note("XMLBusReceive", message->Type() + " " + std::to_string(number) + " " + description);
    });
    server.Count.Connect(owner_, [this] { Note("Count", ""); });
}

std::vector<std::string> HeardEvents::Of(const std::string& name) const {
    std::vector<std::string> found;
    for (const auto& line : lines_) {
        if (line == name) found.emplace_back();
        if (line.starts_with(name + " ")) found.push_back(line.substr(name.size() + 1));
    }
    return found;
}

TestClient::TestClient(FakePlatform& machine, std::int32_t port)
    : machine_(machine), connection_(APClient::Create(machine.platform)) {
    connection_->Receive.Connect(owner_, [this](const Block& block) {
        answers_.emplace_back().LoadXML(block.data);
        tag_ = block.tag;
    });
    connection_->Connect("127.0.0.1", port, "", 1000);
    machine_.loop->RunReady();
}

void TestClient::Sends(const XMLMessage& message, const std::string& tag) {
    connection_->Send(message, tag);
    machine_.loop->RunReady();
}

void TestClient::SendsText(const std::string& text, const std::string& tag) {
    connection_->SetSendType(DataType::XML);
    connection_->SendText(text, tag);
    machine_.loop->RunReady();
}

void TestClient::SendsBytes(const std::string& bytes) {
    connection_->SendBytes(bytes);
    machine_.loop->RunReady();
}

void TestClient::Registers(const std::string& session_id, const std::string& version,
                           const std::string& app_id, const std::string& locale, const std::string& tag) {
    Sends(MessageOf("ASRegisterRequest", {{"AppID", app_id}, {"SessionID", session_id}, {"LocaleID", locale}},
                    version),
          tag);
}

void TestClient::Leaves() {
    connection_->Disconnect();
    machine_.loop->RunReady();
}

std::vector<std::string> TestClient::AnswerTypes() const {
    std::vector<std::string> types;
    for (const auto& answer : answers_)
        types.push_back(answer.Type());
    return types;
}

TestLoginServer::TestLoginServer(FakePlatform& machine, LocalBus& bus)
    : machine_(machine), client_(XMLBusClient::Create(machine.platform, bus.MakeTransport())) {
    client_->ReceiveMessage.Connect(owner_, [this](const std::shared_ptr<XMLMessage>& message, bool&) {
        (message->Destination().subtype == "Broadcast" ? announcements : requests).push_back(*message);
    });
    client_->AddSubscription("ZEB", BusSubscription::Shared, "");
    client_->AddSubscription("ZEB", BusSubscription::Ordinary, "Broadcast");
    client_->Start();
    machine_.loop->RunReady();
}

XMLMessage TestLoginServer::Latest(const std::string& type) const {
    for (auto request = requests.rbegin(); request != requests.rend(); ++request) {
        if (request->Type() == type) return *request;
    }
    ADD_FAILURE() << "no " << type << " came";
    return {};
}

XMLMessage TestLoginServer::RegistrationOf(const std::string& session_id) const {
    for (auto request = requests.rbegin(); request != requests.rend(); ++request) {
        if (request->Type() == "RequestASRegistration" && request->Field("SessionID") == session_id)
            return *request;
    }
    ADD_FAILURE() << "nobody asked to register " << session_id;
    return {};
}

void TestLoginServer::Mutters(XMLMessage message, const BusAddress& destination) {
    message.SetDestination(destination);
    client_->Send(message);
}

void TestLoginServer::Says(XMLMessage message, const BusAddress& destination) {
    Mutters(std::move(message), destination);
    machine_.loop->RunReady();
}

Fields TestLoginServer::Correlation(const XMLMessage& request) {
    Fields fields{{"TransID", request.Field("TransID")}};
    if (request.HasField("ReturnTag")) fields.emplace_back("ReturnTag", request.Field("ReturnTag"));
    return fields;
}

void TestLoginServer::Answers(const std::string& request_type, XMLMessage answer) {
    const XMLMessage request = Latest(request_type);
    for (const auto& [name, value] : Correlation(request))
        answer.SetField(name, value);
    Says(std::move(answer), {request.Field("ReturnMsgType"), request.Field("ReturnSubType")});
}

void TestLoginServer::Grants(const std::string& session_id, const Fields& session_info) {
    const XMLMessage request = RegistrationOf(session_id);
    XMLMessage answer = MessageOf("ASRegistrationResponse", Correlation(request));
    answer.SetMessageField("SessionInfo", MessageOf("SessionInfo", session_info));
    Says(std::move(answer), {request.Field("ReturnMsgType"), request.Field("ReturnSubType")});
}

void TestLoginServer::Refuses(const std::string& session_id, const std::string& code,
                              const std::string& text) {
    const XMLMessage request = RegistrationOf(session_id);
    XMLMessage answer = MessageOf("ASRegistrationResponse", Correlation(request));
    XMLElement error("ErrorResponse");
    error.Add("ErrorCode", code);
    error.Add("ErrorDescription", text);
    answer.SetField(std::move(error));
    Says(std::move(answer), {request.Field("ReturnMsgType"), request.Field("ReturnSubType")});
}

ServerTest::ServerTest() {
    machine_.strings->texts = {{1001, "Must initialize."},
                               {1002, "Connected on port %0%."},
                               {1003, "Invalid interfaces."},
                               {412, "The login server is silent.  Again?"}};
    bus_client_->SetEnterpriseID("ENT");
    server_ = std::make_unique<KQAppSessServer>(machine_.platform);
    heard_.ListenTo(*server_);
}

void ServerTest::Initialize(const std::string& app_id, const std::string& interfaces) {
    server_->Initialize(app_id, app_, bus_client_, statistics_, InterfaceVersions(interfaces));
    bus_client_->ReceiveMessage.Disconnect(owner_);
    bus_client_->ReceiveMessage.Connect(
        owner_, [this](const std::shared_ptr<XMLMessage>&, bool& handled) { handled_.push_back(handled); });
}

void ServerTest::Listens() {
    Initialize();
    server_->Listen(7000);
    Run();
    Forget();
}

TestClient& ServerTest::Client() {
    return *clients_.emplace_back(std::make_unique<TestClient>(machine_, 7000));
}

TestClient& ServerTest::RegisteredClient(const std::string& session_id) {
    TestClient& client = Client();
    client.Registers(session_id);
    zeb_.Grants(session_id);
    Forget();
    return client;
}

void ServerTest::Forget() {
    heard_.Clear();
    heard_.sent.clear();
    zeb_.announcements.clear();
    handled_.clear();
}

void ServerTest::FillBus(bool full) {
    bus_client_->SetLimits(full ? XMLBusClient::Limits{0, 0} : XMLBusClient::Limits{});
}

std::string ServerTest::LatestInfo(const std::string& name) const {
    if (zeb_.announcements.empty()) return "nothing was announced";
    return zeb_.announcements.back().Root().TextOf("ApplicationInfos/ApplicationInfo/" + name);
}

std::vector<std::string> ServerTest::SessionsIn(const XMLMessage& announcement) {
    std::vector<std::string> ids;
    const auto* list = announcement.Root().Find("ApplicationInfos/ApplicationInfo/Sessions");
    if (list == nullptr) return {"no list"};
    for (const auto& session : list->Children())
        ids.push_back(session.Text());
    return ids;
}

std::string ServerTest::StateOf(const XMLMessage& announcement) {
    return announcement.Root().TextOf("ApplicationInfos/ApplicationInfo/InfoState");
}

}  // namespace kq
