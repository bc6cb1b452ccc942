// The bus client.
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"
#include "server/Announcement.h"

namespace kq::automation {
namespace {

enum Event : DISPID { kReceiveMessage = 1, kStatistics, kConnectionChanged };

kq::BusSubscription OptionOf(::BusSubscription option) {
    if (option != busOrdinary && option != busShared) Raise(RuntimeError::InvalidProcedureCall);
    return static_cast<kq::BusSubscription>(option);
}

}  // namespace

template <>
class ObjectOf<XMLBusClient> final : public Object<XMLBusClient, EventSource<::_ClientEvents>> {
 public:
    explicit ObjectOf(CorePtr core) : Object(std::move(core)) {
        core_->ReceiveMessage.Connect(owner_, [this](const XMLBusClient::MessagePtr& message, bool& handled) {
            VARIANT_BOOL flag = BooleanOf(handled);
            Fire(kReceiveMessage, [&] { return Arguments(Wrap(message), ByReference(flag)); });
            handled = flag != VARIANT_FALSE;
        });
        core_->StatisticsEvent.Connect(owner_, [this](const BusStatistics& figures) {
            const auto number = [](std::int64_t figure) { return static_cast<double>(figure); };
            Fire(kStatistics, [&] {
                return Arguments(number(figures.sent), number(figures.written), number(figures.replaced),
                                 number(figures.received), number(figures.malformed),
                                 number(figures.reconnects), number(figures.waiting));
            });
        });
        core_->ConnectionChanged.Connect(owner_, [this](bool connected, const std::string& reason) {
            Fire(kConnectionChanged, [&] { return Arguments(connected, reason); });
        });
    }

    HRESULT STDMETHODCALLTYPE get_Address(BSTR* Result) override {
        return Get(Result, [&] { return core_->Hub().address; });
    }
    HRESULT STDMETHODCALLTYPE put_Address(BSTR Value) override {
        return Do([&] { Change([&](BusSettings& hub) { hub.address = TextOf(Value); }); });
    }
    HRESULT STDMETHODCALLTYPE get_Port(long* Result) override {
        return Get(Result, [&] { return core_->Hub().port; });
    }
    HRESULT STDMETHODCALLTYPE put_Port(long Value) override {
        return Do([&] { Change([&](BusSettings& hub) { hub.port = static_cast<std::int32_t>(Value); }); });
    }
    HRESULT STDMETHODCALLTYPE put_Key(BSTR Value) override {
        return Do([&] { Change([&](BusSettings& hub) { hub.key = TextOf(Value); }); });
    }
    HRESULT STDMETHODCALLTYPE get_Running(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Running(); });
    }
    HRESULT STDMETHODCALLTYPE get_Connected(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Connected(); });
    }
    HRESULT STDMETHODCALLTYPE Start() override {
        return Do([&] { core_->Start(); });
    }
    HRESULT STDMETHODCALLTYPE Stop() override {
        return Do([&] { core_->Stop(); });
    }
    HRESULT STDMETHODCALLTYPE AddSubscription(BSTR Type, ::BusSubscription Option, BSTR SubType) override {
        return Do([&] { core_->AddSubscription(TextOf(Type), OptionOf(Option), TextOf(SubType)); });
    }
    HRESULT STDMETHODCALLTYPE RemoveSubscription(BSTR Type, BSTR SubType) override {
        return Do([&] { core_->RemoveSubscription(TextOf(Type), TextOf(SubType)); });
    }
    HRESULT STDMETHODCALLTYPE get_ReplyType(BSTR* Result) override {
        return Get(Result, [&] { return core_->ReplyType(); });
    }
    HRESULT STDMETHODCALLTYPE get_ReplySubType(BSTR* Result) override {
        return Get(Result, [&] { return core_->ReplySubType(); });
    }
    HRESULT STDMETHODCALLTYPE get_EnterpriseID(BSTR* Result) override {
        return Get(Result, [&] { return core_->EnterpriseID(); });
    }
    HRESULT STDMETHODCALLTYPE put_EnterpriseID(BSTR Value) override {
        return Do([&] { core_->SetEnterpriseID(TextOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE Send(::_XMLMessage* Msg, ::BusSending Option) override {
        return Do([&] {
            const auto message = Unwrap<XMLMessage>(Msg);
            if (!message) Raise(RuntimeError::ObjectNotSet);
            if (Option != busMessage && Option != busState) Raise(RuntimeError::InvalidProcedureCall);
            Option == busState ? SendState(*core_, *message) : core_->Send(*message);
        });
    }

 private:
    template <class F>
    void Change(F&& change) {
        BusSettings hub = core_->Hub();
        change(hub);
        core_->SetHub(std::move(hub));
    }

    Owner owner_;
};

template Ptr<InterfaceOf<XMLBusClient>> Wrap(std::shared_ptr<XMLBusClient>);

}  // namespace kq::automation
