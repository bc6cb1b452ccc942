// The actors of the tests of sessions.
#include "automation/SessionsTesting.h"

#include <algorithm>
#include <deque>

#include "automation/WideText.h"

namespace kq {

ClientProgram::ClientProgram(long port) {
    EXPECT_EQ(connection_->Connect(Text(L"127.0.0.1"), port, nullptr, 0), S_OK);
    EXPECT_EQ(connection_->put_ReceiveMode(aprmTake), S_OK);
}

void ClientProgram::Sends(const MessageObject& message, const std::string& tag) {
    EXPECT_EQ(connection_->Send(message.Get(), BstrOf(tag)), S_OK);
}

void ClientProgram::SendsText(const std::string& text) {
    connection_->put_SendType(apdtXML);
    EXPECT_EQ(connection_->SendText(BstrOf(text), nullptr), S_OK);
}

void ClientProgram::SendsBytes(const std::string& bytes) {
    _variant_t array;
    array.vt = VT_ARRAY | VT_UI1;
    array.parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    void* data = nullptr;
    SafeArrayAccessData(array.parray, &data);
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(data));
    SafeArrayUnaccessData(array.parray);
    EXPECT_EQ(connection_->SendBytes(array, nullptr), S_OK);
}

void ClientProgram::Registers(const std::string& session_id, const std::string& version,
                              const std::string& app_id, const std::string& locale) {
    Sends(MessageOf("ASRegisterRequest", {{"AppID", app_id}, {"SessionID", session_id}, {"LocaleID", locale}},
                    version));
}

void ClientProgram::Leaves() {
    EXPECT_EQ(connection_->Disconnect(), S_OK);
}

MessageObject ClientProgram::Answer() {
    Ptr<_Block> block;
    EXPECT_EQ(connection_->TakeBlock(20'000, block.Out()), S_OK) << "no answer came";
    auto answer = NewMessage();
    _variant_t data;
    if (block) block->get_Data(&data);
    EXPECT_EQ(answer->LoadXML(_bstr_t(data)), S_OK);
    return answer;
}

bool ClientProgram::IsDisconnected() {
    return Await([&] {
        VARIANT_BOOL connected = VARIANT_TRUE;
        connection_->get_Connected(&connected);
        return connected == VARIANT_FALSE;
    });
}

// Takes in what the bus delivers.
class LoginServer::Requests final : public HostObject {
 public:
    Requests() { events = __uuidof(_ClientEvents); }
    std::deque<MessageObject> received;

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                     EXCEPINFO*, UINT*) override {
        if (id == 1) received.push_back(Ptr<IDispatch>(parameters->rgvarg[1].pdispVal).As<_XMLMessage>());
        return S_OK;
    }
};

LoginServer::LoginServer(long bus_port) : requests_(std::make_unique<Requests>()) {
    Advise(bus_.Get(), __uuidof(_ClientEvents), requests_.get());
    bus_->put_Port(bus_port);
    bus_->AddSubscription(Text(L"ZEB"), busShared, nullptr);
    bus_->AddSubscription(Text(L"ZEB"), busOrdinary, Text(L"Broadcast"));
    EXPECT_EQ(bus_->Start(), S_OK);
    EXPECT_TRUE(Await([&] {
        VARIANT_BOOL connected = VARIANT_FALSE;
        bus_->get_Connected(&connected);
        return connected != VARIANT_FALSE;
    }));
}

LoginServer::~LoginServer() {
    bus_->Stop();
    bus_ = nullptr;
}

MessageObject LoginServer::Request(const std::string& type) {
    MessageObject found;
    EXPECT_TRUE(Await([&] {
        auto& all = requests_->received;
        while (!found && !all.empty()) {
            if (TypeOf(all.front()) == type) found = all.front();
            all.pop_front();
        }
        return static_cast<bool>(found);
    })) << "no "
        << type << " came";
    return found ? found : NewMessage();
}

void LoginServer::Grants(const Fields& session_info) {
    const auto answer = MessageOf("ASRegistrationResponse");
    answer->SetMessageField(Text(L"SessionInfo"), MessageOf("SessionInfo", session_info).Get());
    Answers(Request("RequestASRegistration"), answer);
}

void LoginServer::Refuses(const std::string& code, const std::string& description) {
    const auto answer = MessageOf("ASRegistrationResponse");
    const auto error = ListOf("ErrorResponse", "ErrorCode", {code});
    error->Add(Text(L"ErrorDescription"), BstrOf(description));
    answer->SetElementField(error.Get());
    Answers(Request("RequestASRegistration"), answer);
}

void LoginServer::Answers(const MessageObject& request, const MessageObject& answer) {
    for (const char* const name : {"TransID", "ReturnTag"}) {
        if (!FieldOf(request, name).empty()) answer->put_Field(BstrOf(name), BstrOf(FieldOf(request, name)));
    }
    Says(answer, FieldOf(request, "ReturnMsgType"), FieldOf(request, "ReturnSubType"));
}

void LoginServer::Says(const MessageObject& message, const std::string& type, const std::string& subtype) {
    message->SetDestination(BstrOf(type), BstrOf(subtype));
    EXPECT_EQ(bus_->Send(message.Get(), busMessage), S_OK);
}

HRESULT ApplicationObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* id) {
    if (std::wstring(names[0]) != L"Path") return DISP_E_UNKNOWNNAME;
    *id = 1;
    return S_OK;
}

HRESULT ApplicationObject::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                  UINT*) {
    *result = _variant_t(path.c_str()).Detach();
    return S_OK;
}

ApplicationServer::ApplicationServer(long bus_port) {
    bus->put_Port(bus_port);
    bus->put_EnterpriseID(Text(L"ENT"));
    Advise(object.Get(), __uuidof(_KQAppSessServerEvents), &events);
}

ApplicationServer::~ApplicationServer() {
    object->Terminate();
    bus->Stop();
}

HRESULT ApplicationServer::Initialize(const _variant_t& versions, IDispatch* application) {
    return object->Initialize(Text(L"Demo"), application, bus.Get(), statistics.Get(), versions);
}

void ApplicationServer::Listens() {
    EXPECT_EQ(object->Listen(0, _variant_t(L"127.0.0.1")), S_OK);
    EXPECT_TRUE(Await([&] {
        VARIANT_BOOL connected = VARIANT_FALSE;
        bus->get_Connected(&connected);
        return connected != VARIANT_FALSE;
    }));
}

Ptr<_Listener> ApplicationServer::Listener() const {
    Ptr<_Listener> listener;
    EXPECT_EQ(object->get_Listener(listener.Out()), S_OK);
    return listener;
}

long ApplicationServer::Port() const {
    long port = 0;
    Listener()->get_Port(&port);
    return port;
}

Ptr<_KQAppSessionInfos> ApplicationServer::Sessions() const {
    Ptr<_KQAppSessionInfos> sessions;
    EXPECT_EQ(object->get_Sessions(sessions.Out()), S_OK);
    return sessions;
}

long ApplicationServer::CountOfSessions() const {
    long count = -1;
    Sessions()->get_Count(&count);
    return count;
}

Ptr<_KQAppSessionInfo> ApplicationServer::Session(const _variant_t& index) const {
    Ptr<_KQAppSessionInfo> session;
    EXPECT_EQ(Sessions()->get_Session(index, session.Out()), S_OK);
    return session;
}

void SessionsTest::Listens() {
    ASSERT_EQ(server_.Initialize(), S_OK);
    server_.Listens();
    events_.Forget();
}

ClientProgram& SessionsTest::Client() {
    return *clients_.emplace_back(std::make_unique<ClientProgram>(server_.Port()));
}

ClientProgram& SessionsTest::RegisteredClient(const std::string& session_id) {
    ClientProgram& client = Client();
    client.Registers(session_id);
    zeb_.Grants();
    EXPECT_EQ(FieldOf(client.Answer(), "ErrorNum"), "0");
    return client;
}

bool SessionsTest::AwaitEvent(const std::string& name, std::size_t count) {
    return Await([&] { return events_.Of(name).size() >= count; });
}

}  // namespace kq
