// An application server between its clients and its login server. All three are hosts of the DLL in this
// process: they have nothing but automation objects, and the bus is a real one on loopback.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "automation/SessionEvents.h"
#include "automation/TestBus.h"

namespace kq {

// A client program's connection.
class ClientProgram {
 public:
    explicit ClientProgram(long port);

    void Sends(const MessageObject& message, const std::string& tag = {});
    void SendsText(const std::string& text);
    void SendsBytes(const std::string& bytes);
    void Registers(const std::string& session_id, const std::string& version = "1",
                   const std::string& app_id = "Demo", const std::string& locale = "1033");
    void Leaves();
    MessageObject Answer();  // the next one
    bool IsDisconnected();   // within the time that anything may take

 private:
    Ptr<_APClient> connection_ = Create<_APClient>(L"KQAppProtocolLib.APClient");
};

// The login server's place on the bus.
class LoginServer {
 public:
    explicit LoginServer(long bus_port);
    ~LoginServer();

    // The next message of the type that came for the login server.
    MessageObject Request(const std::string& type);
    // Answers the next registration request.
    void Grants(const Fields& session_info = {{"LoginID", "ann"}, {"UserUID", "55"}});
    void Refuses(const std::string& code, const std::string& description);
    // Answers a request as it asked to be answered.
    void Answers(const MessageObject& request, const MessageObject& answer);
    void Says(const MessageObject& message, const std::string& type, const std::string& subtype);
    void SaysToAll(const MessageObject& message) { Says(message, "AS", "Broadcast"); }

 private:
    class Requests;
    Ptr<_Client> bus_ = Create<_Client>(L"KQXMLBusClientLib.Client");
    std::unique_ptr<Requests> requests_;
};

// The host's application object, with the property Path.
class ApplicationObject final : public HostObject {
 public:
    std::wstring path;

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* id) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override;
};

// An application server with a bus client of its own.
struct ApplicationServer {
    explicit ApplicationServer(long bus_port);
    ~ApplicationServer();

    HRESULT Initialize(const _variant_t& versions = L"1.0", IDispatch* application = nullptr);
    // On a free port, and on the bus.
    void Listens();
    Ptr<_Listener> Listener() const;
    long Port() const;
    Ptr<_KQAppSessionInfos> Sessions() const;
    long CountOfSessions() const;
    Ptr<_KQAppSessionInfo> Session(const _variant_t& index) const;

    ServerEvents events;  // outlives what it listens to
    Ptr<_Client> bus = Create<_Client>(L"KQXMLBusClientLib.Client");
    Ptr<_Statistics> statistics = Create<_Statistics>(L"KQStatisticsLib.Statistics");
    Ptr<_KQAppSessServer> object = NewServer();
};

class SessionsTest : public testing::Test {
 protected:
    // Listening, everything of it delivered and forgotten.
    void Listens();
    ClientProgram& Client();  // a new connection
    ClientProgram& RegisteredClient(const std::string& session_id);
    bool AwaitEvent(const std::string& name, std::size_t count = 1);

    TestBus bus_;
    LoginServer zeb_{bus_.Port()};
    ApplicationServer server_{bus_.Port()};
    ServerEvents& events_ = server_.events;

 private:
    std::vector<std::unique_ptr<ClientProgram>> clients_;
};

}  // namespace kq
