// The actors of the tests of sessions.
#include "automation/SessionsTesting.h"

#include <algorithm>
#include <deque>

#include "automation/WideText.h"

namespace kq {
namespace {

constexpr wchar_t kInfo[] = L"ApplicationInfos/ApplicationInfo";

std::string Taken(BSTR text) {
    const _bstr_t owned(text, false);
    return Narrow(text);
}

template <class Interface>
std::string TextOf(const Ptr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    return Narrow(Read(object, get).c_str());
}

// The argument at a position of the event's declaration, which must be of that type.
const VARIANT& Argument(const DISPPARAMS& arguments, UINT position, VARTYPE type) {
    static const VARIANT none{};
    EXPECT_LT(position, arguments.cArgs);
    if (position >= arguments.cArgs) return none;
    const VARIANT& argument = arguments.rgvarg[arguments.cArgs - 1 - position];
    EXPECT_EQ(argument.vt, type);
    return argument.vt == type ? argument : none;
}

template <class Interface>
Ptr<Interface> ObjectAt(const DISPPARAMS& arguments, UINT position) {
    const Ptr<IDispatch> object(Argument(arguments, position, VT_DISPATCH).pdispVal);
    auto result = object.As<Interface>();
    EXPECT_TRUE(result);
    return result;
}

std::string SessionAt(const DISPPARAMS& arguments, UINT position) {
    return IdOf(ObjectAt<_KQAppSessionInfo>(arguments, position));
}
std::string NumberAt(const DISPPARAMS& arguments, UINT position) {
    return std::to_string(Argument(arguments, position, VT_I4).lVal);
}
std::string TextAt(const DISPPARAMS& arguments, UINT position) {
    return Narrow(Argument(arguments, position, VT_BSTR).bstrVal);
}

std::vector<Ptr<_XMLElement>> ChildrenOf(const Ptr<_XMLElement>& element) {
    long count = 0;
    if (element) element->get_Count(&count);
    std::vector<Ptr<_XMLElement>> children(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i)
        element->get_Item(_variant_t(i + 1), children[static_cast<std::size_t>(i)].Out());
    return children;
}

Announcement AnnouncementIn(const MessageObject& message) {
    Announcement result;
    message->Element(_bstr_t(kInfo), result.info.Out());
    result.state = result.Text("InfoState");
    Ptr<_XMLElement> list;
    result.info->get_Item(_variant_t(L"Sessions"), list.Out());
    if (!list) result.sessions = {"no list"};
    for (const auto& session : ChildrenOf(list))
        result.sessions.push_back(TextOf(session, &_XMLElement::get_Text));
    return result;
}

}  // namespace

_bstr_t BstrOf(const std::string& text) {
    return _bstr_t(Wide(text).c_str());
}

MessageObject MessageOf(const std::string& type, const Fields& fields, const std::string& version) {
    auto message = NewMessage();
    message->put_Type(BstrOf(type));
    message->put_Version(BstrOf(version));
    for (const auto& [name, value] : fields)
        message->put_Field(BstrOf(name), BstrOf(value));
    return message;
}

std::string TypeOf(const MessageObject& message) {
    return TextOf(message, &_XMLMessage::get_Type);
}

std::string FieldOf(const MessageObject& message, const std::string& name) {
    BSTR text = nullptr;
    EXPECT_EQ(message->get_Field(BstrOf(name), &text), S_OK);
    return Taken(text);
}

Ptr<_XMLElement> ListOf(const std::string& name, const std::string& child,
                        const std::vector<std::string>& texts) {
    auto list = Create<_XMLElement>(L"KQXMLMessageLib.XMLElement");
    list->Initialize(BstrOf(name), nullptr);
    for (const auto& text : texts)
        list->Add(BstrOf(child), BstrOf(text));
    return list;
}

std::string IdOf(const Ptr<_KQAppSessionInfo>& session) {
    return session ? TextOf(session, &_KQAppSessionInfo::get_SessionID) : "no session";
}

std::string Announcement::Text(const std::string& name) const {
    BSTR text = nullptr;
    info->TextOf(BstrOf(name), &text);
    return Taken(text);
}

std::vector<std::string> Announcement::Texts(const std::string& name) const {
    std::vector<std::string> texts;
    for (const auto& child : ChildrenOf(info)) {
        if (TextOf(child, &_XMLElement::get_Name) == name)
            texts.push_back(TextOf(child, &_XMLElement::get_Text));
    }
    return texts;
}

bool Announcement::Has(const std::string& name) const {
    return !Texts(name).empty();
}

HRESULT ServerEvents::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                             UINT*) {
    const DISPPARAMS& given = *parameters;
    switch (id) {
        case 1:
            heard.push_back("Connected " + SessionAt(given, 0));
            break;
        case 2:
            heard.push_back("ReceivedData " + SessionAt(given, 0) + " " + TextAt(given, 1) + " " +
                            NumberAt(given, 2) + " " + TextAt(given, 3));
            break;
        case 3:
            heard.push_back("Disconnected " + SessionAt(given, 0));
            break;
        case 4:
            heard.push_back("Error " + NumberAt(given, 0) + " " + TextAt(given, 1));
            break;
        case 5: {
            const auto client = ObjectAt<_APClient>(given, 1);
            heard.push_back("SessionError " + SessionAt(given, 0) + " " +
                            TextOf(client, &_APClient::get_Identifier) + " " + NumberAt(given, 2) + " " +
                            TextAt(given, 3));
            break;
        }
        case 6: {
            const MessageObject message =
                Ptr<IDispatch>(*Argument(given, 0, VT_BYREF | VT_DISPATCH).ppdispVal).As<_XMLMessage>();
            heard.push_back("XMLBusSend " + TypeOf(message));
            if (TypeOf(message) == "ASBroadcastInfo") announcements.push_back(AnnouncementIn(message));
            break;
        }
        case 7:
            heard.push_back("XMLBusReceive " + TypeOf(ObjectAt<_XMLMessage>(given, 0)) + " " +
                            std::to_string(*Argument(given, 1, VT_BYREF | VT_I4).plVal) + " " +
                            Narrow(*Argument(given, 2, VT_BYREF | VT_BSTR).pbstrVal));
            break;
        case 8:
            heard.push_back("Count");
            break;
        default:
            heard.push_back("event " + std::to_string(id));
    }
    if (on_event) on_event(id);
    return answer;
}

std::vector<std::string> ServerEvents::Of(const std::string& name) const {
    std::vector<std::string> found;
    for (const auto& line : heard) {
        if (line == name) found.emplace_back();
        if (line.starts_with(name + " ")) found.push_back(line.substr(name.size() + 1));
    }
    return found;
}

std::vector<Announcement> ServerEvents::Announced(const std::string& state) const {
    std::vector<Announcement> found;
    std::copy_if(announcements.begin(), announcements.end(), std::back_inserter(found),
                 [&](const auto& announcement) { return announcement.state == state; });
    return found;
}

void ServerEvents::Forget() {
    heard.clear();
    announcements.clear();
}

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

std::string ClientProgram::Address() const {
    long port = 0;
    connection_->get_LocalPort(&port);
    return TextOf(connection_, &_APClient::get_LocalAddress) + ":" + std::to_string(port);
}

// Takes in what the bus delivers.
class LoginServer::Requests final : public HostObject {
 public:
    Requests() { events = __uuidof(_ClientEvents); }
    std::deque<MessageObject> received;

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                     EXCEPINFO*, UINT*) override {
        if (id == 1) received.push_back(ObjectAt<_XMLMessage>(*parameters, 0));
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
