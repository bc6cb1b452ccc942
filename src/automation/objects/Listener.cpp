// Listeners.
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"
#include "automation/Snapshot.h"
#include "automation/objects/Limits.h"

namespace kq::automation {
namespace {

enum Event : DISPID { kAccepted = 1, kReceive, kDisconnected, kClientError, kError };

}  // namespace

template <>
class ObjectOf<Listener> final : public LimitProperties<Object<Listener, EventSource<::_ListenerEvents>>> {
 public:
    using ClientPtr = kq::Listener::ClientPtr;

    explicit ObjectOf(CorePtr core) : LimitProperties(std::move(core)) {
        core_->Accepted.Connect(owner_, [this](const ClientPtr& client) {
            Fire(kAccepted, [&] { return Arguments(Wrap(client)); });
        });
        core_->Receive.Connect(owner_, [this](const ClientPtr& client, const Block& block) {
            Fire(kReceive, [&] {
                return Arguments(Wrap(client), DataOf(block), static_cast<long>(block.data_type), block.tag);
            });
        });
        core_->Disconnected.Connect(owner_, [this](const ClientPtr& client) {
            Fire(kDisconnected, [&] { return Arguments(Wrap(client)); });
        });
        core_->ClientError.Connect(
            owner_, [this](const ClientPtr& client, std::int32_t number, const std::string& description) {
                Fire(kClientError, [&] { return Arguments(Wrap(client), number, description); });
            });
        core_->Error.Connect(owner_, [this](std::int32_t number, const std::string& description) {
            Fire(kError, [&] { return Arguments(number, description); });
        });
    }

    HRESULT STDMETHODCALLTYPE Listen(long Port, BSTR LocalAddress) override {
        return Do([&] { core_->Listen(static_cast<std::int32_t>(Port), TextOf(LocalAddress)); });
    }
    HRESULT STDMETHODCALLTYPE StopListening(VARIANT_BOOL DisconnectAll) override {
        return Do([&] { core_->StopListening(DisconnectAll != VARIANT_FALSE); });
    }
    HRESULT STDMETHODCALLTYPE get_Listening(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Listening(); });
    }
    HRESULT STDMETHODCALLTYPE get_Port(long* Result) override {
        return Get(Result, [&] { return core_->Port(); });
    }
    HRESULT STDMETHODCALLTYPE get_LocalAddress(BSTR* Result) override {
        return Get(Result, [&] { return core_->LocalAddress(); });
    }
    HRESULT STDMETHODCALLTYPE get_Client(VARIANT IdentifierIndex, ::_APClient** Result) override {
        return Get(Result, [&] {
            const auto client = AtIndex(
                IdentifierIndex, [&](const std::string& id) { return core_->Client(id); },
                [&](std::int32_t position) { return ClientAt(position); });
            if (!client) Raise(RuntimeError::InvalidProcedureCall);
            return Wrap(client);
        });
    }
    HRESULT STDMETHODCALLTYPE Exists(BSTR Identifier, VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Exists(TextOf(Identifier)); });
    }
    HRESULT STDMETHODCALLTYPE get_Count(long* Result) override {
        return Get(Result, [&] { return core_->Count(); });
    }
    HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** Result) override {
        return Get(Result, [&] {
            return EnumeratorOver(core_->Clients(), [](const ClientPtr& client) { return Wrap(client); });
        });
    }
    HRESULT STDMETHODCALLTYPE get_KeepAlive(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->KeepAlive(); });
    }
    HRESULT STDMETHODCALLTYPE put_KeepAlive(VARIANT_BOOL Value) override {
        return Do([&] { core_->SetKeepAlive(Value != VARIANT_FALSE); });
    }
    HRESULT STDMETHODCALLTYPE get_MaxClients(long* Result) override {
        return Get(Result, [&] { return core_->MaxClients(); });
    }
    HRESULT STDMETHODCALLTYPE put_MaxClients(long Value) override {
        return Do([&] { core_->SetMaxClients(static_cast<std::int32_t>(Value)); });
    }

 private:
    ClientPtr ClientAt(std::int32_t position) const {
        const auto clients = core_->Clients();
        if (position < 1 || static_cast<std::size_t>(position) > clients.size()) return nullptr;
        return clients[static_cast<std::size_t>(position) - 1];
    }

    Owner owner_;
};

template Ptr<InterfaceOf<Listener>> Wrap(std::shared_ptr<Listener>);

}  // namespace kq::automation
