// The session manager.
#include "automation/AppObjectOfHost.h"
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"

namespace kq::automation {
namespace {

// The events by the ids that they have in the type library.
enum Event : DISPID {
    kConnected = 1,
    kReceivedData,
    kDisconnected,
    kError,
    kSessionError,
    kXMLBusSend,
    kXMLBusReceive,
    kCount,
};

InterfaceVersions InterfaceVersionsOf(const VARIANT& argument) {
    const Variant value = Resolve(argument);
    if (value.vt == VT_BSTR) return InterfaceVersions(TextOf(value.bstrVal));
    try {
        return InterfaceVersions(ListOf(value));
    } catch (const Error&) {
        return InterfaceVersions::Invalid();
    } catch (const Failure&) {
        return InterfaceVersions::Invalid();
    }
}

}  // namespace

template <>
class ObjectOf<KQAppSessServer> final
    : public Object<KQAppSessServer, EventSource<::_KQAppSessServerEvents>> {
 public:
    using SessionPtr = KQAppSessServer::SessionPtr;

    explicit ObjectOf(CorePtr core) : Object(std::move(core)) {
        ListenToSessions();
        ListenToBus();
    }

    HRESULT STDMETHODCALLTYPE get_InfoInterval(long* Result) override {
        return Get(Result, [&] { return core_->InfoInterval(); });
    }
    HRESULT STDMETHODCALLTYPE put_InfoInterval(long Value) override {
        return Do([&] { core_->SetInfoInterval(static_cast<std::int32_t>(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_Listener(::_Listener** Result) override {
        return Get(Result, [&] { return Wrap(core_->Listener()); });
    }
    HRESULT STDMETHODCALLTYPE get_Sessions(::_KQAppSessionInfos** Result) override {
        return Get(Result, [&] { return Wrap(core_->Sessions()); });
    }
    HRESULT STDMETHODCALLTYPE Initialize(BSTR AppID, IDispatch* AppObj, ::_Client* Client,
                                         ::_Statistics* Statistics, VARIANT InterfacesVersions) override {
        return Do([&] {
            core_->Initialize(TextOf(AppID), AppObjectOf(Ptr<IDispatch>(AppObj)),
                              Unwrap<XMLBusClient>(Client), Unwrap<kq::Statistics>(Statistics),
                              InterfaceVersionsOf(InterfacesVersions));
        });
    }
    HRESULT STDMETHODCALLTYPE Terminate() override {
        return Do([&] { core_->Terminate(); });
    }
    HRESULT STDMETHODCALLTYPE Listen(long ListenPort, VARIANT LocalAddress) override {
        return Do([&] { core_->Listen(static_cast<std::int32_t>(ListenPort), TextOr(&LocalAddress)); });
    }
    HRESULT STDMETHODCALLTYPE StopListening(VARIANT DisconnectAll) override {
        return Do([&] { core_->StopListening(BooleanOr(&DisconnectAll)); });
    }
    HRESULT STDMETHODCALLTYPE CheckMessage(::_XMLMessage* Msg, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->CheckMessage(Unwrap<XMLMessage>(Msg)); });
    }
    HRESULT STDMETHODCALLTYPE get_IsInitialized(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->IsInitialized(); });
    }
    HRESULT STDMETHODCALLTYPE setInstallExeFile(BSTR InstallExeFile) override {
        return Do([&] { core_->setInstallExeFile(TextOf(InstallExeFile)); });
    }

 private:
    void ListenToSessions() {
        core_->Connected.Connect(owner_, [this](const SessionPtr& session) {
            Fire(kConnected, [&] { return Arguments(Wrap(session)); });
        });
        core_->ReceivedData.Connect(owner_, [this](const SessionPtr& session, const Block& block) {
            Fire(kReceivedData, [&] {
                return Arguments(Wrap(session), DataOf(block), static_cast<long>(block.data_type), block.tag);
            });
        });
        core_->Disconnected.Connect(owner_, [this](const SessionPtr& session) {
            Fire(kDisconnected, [&] { return Arguments(Wrap(session)); });
        });
        core_->Error.Connect(owner_, [this](std::int32_t number, const std::string& description) {
            Fire(kError, [&] { return Arguments(number, description); });
        });
        core_->SessionError.Connect(owner_, [this](const SessionPtr& session,
                                                   const KQAppSessServer::ClientPtr& client,
                                                   std::int32_t number, const std::string& description) {
            Fire(kSessionError, [&] { return Arguments(Wrap(session), Wrap(client), number, description); });
        });
        core_->Count.Connect(owner_, [this] { Fire(kCount, [] { return Arguments(); }); });
    }

    // Arguments by reference are the sinks' own to change; nothing is taken back.
    void ListenToBus() {
        core_->XMLBusSend.Connect(owner_, [this](const KQAppSessServer::MessagePtr& message) {
            Variant object;
            Fire(kXMLBusSend, [&] {
                object = VariantOf(Wrap(message));
                return Arguments(ByReference(object.pdispVal));
            });
        });
        core_->XMLBusReceive.Connect(owner_, [this](const KQAppSessServer::MessagePtr& message,
                                                    std::int32_t number, const std::string& description) {
            long number_now = number;
            Variant text;
            Fire(kXMLBusReceive, [&] {
                text = VariantOf(description);
                return Arguments(Wrap(message), ByReference(number_now), ByReference(text.bstrVal));
            });
        });
    }

    Owner owner_;
};

template Ptr<InterfaceOf<KQAppSessServer>> Wrap(std::shared_ptr<KQAppSessServer>);

}  // namespace kq::automation
