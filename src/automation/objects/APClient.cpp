// Connections and the blocks that are taken from them.
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"
#include "automation/objects/Limits.h"

namespace kq::automation {
namespace {

enum Event : DISPID { kDisconnected = 1, kError, kProgress, kReceive };

ReceiveMode ReceiveModeOf(::APReceiveMode mode) {
    if (mode != aprmEvents && mode != aprmTake) Raise(RuntimeError::InvalidProcedureCall);
    return static_cast<ReceiveMode>(mode);
}

const XMLMessage& MessageIn(::_XMLMessage* object) {
    const auto message = Unwrap<XMLMessage>(object);
    if (!message) Raise(RuntimeError::ObjectNotSet);
    return *message;  // the caller's reference keeps it
}

}  // namespace

template <>
class ObjectOf<Block> final : public Object<Block> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_DataType(::APDataType* Result) override {
        return Get(Result, [&] { return core_->data_type; });
    }
    HRESULT STDMETHODCALLTYPE get_Tag(BSTR* Result) override {
        return Get(Result, [&] { return core_->tag; });
    }
    HRESULT STDMETHODCALLTYPE get_Data(VARIANT* Result) override {
        return Get(Result, [&] { return DataOf(*core_); });
    }
};

template <>
class ObjectOf<APClient> final : public LimitProperties<Object<APClient, EventSource<::_APClientEvents>>> {
 public:
    explicit ObjectOf(CorePtr core) : LimitProperties(std::move(core)) {
        core_->Disconnected.Connect(owner_, [this] { Fire(kDisconnected, [] { return Arguments(); }); });
        core_->Error.Connect(owner_, [this](std::int32_t number, const std::string& description) {
            Fire(kError, [&] { return Arguments(number, description); });
        });
        core_->Progress.Connect(
            owner_, [this](const std::string& tag, std::int64_t received, std::int64_t total) {
                Fire(kProgress, [&] { return Arguments(tag, LongOf(received), LongOf(total)); });
            });
        core_->Receive.Connect(owner_, [this](const Block& block) {
            Fire(kReceive,
                 [&] { return Arguments(DataOf(block), static_cast<long>(block.data_type), block.tag); });
        });
    }

    HRESULT STDMETHODCALLTYPE Connect(BSTR Address, long Port, BSTR LocalAddress, long TimeOut) override {
        return Do([&] {
            core_->Connect(TextOf(Address), static_cast<std::int32_t>(Port), TextOf(LocalAddress),
                           static_cast<std::int32_t>(TimeOut));
        });
    }
    HRESULT STDMETHODCALLTYPE Disconnect() override {
        return Do([&] { core_->Disconnect(); });
    }
    HRESULT STDMETHODCALLTYPE get_Connected(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Connected(); });
    }
    HRESULT STDMETHODCALLTYPE Send(::_XMLMessage* Message, BSTR Tag) override {
        return Do([&] { core_->Send(MessageIn(Message), TextOf(Tag)); });
    }
    HRESULT STDMETHODCALLTYPE SendText(BSTR Text, BSTR Tag) override {
        return Do([&] { core_->SendText(TextOf(Text), TextOf(Tag)); });
    }
    HRESULT STDMETHODCALLTYPE SendBytes(VARIANT Bytes, BSTR Tag) override {
        return Do([&] { core_->SendBytes(BytesOf(Bytes), TextOf(Tag)); });
    }
    HRESULT STDMETHODCALLTYPE TakeBlock(long TimeOut, ::_Block** Result) override {
        return Get(Result, [&] {
            return Wrap(std::make_shared<Block>(core_->TakeBlock(static_cast<std::int32_t>(TimeOut))));
        });
    }
    HRESULT STDMETHODCALLTYPE Request(::_XMLMessage* Message, BSTR Tag, long TimeOut,
                                      ::_XMLMessage** Result) override {
        return Get(Result, [&] {
            return Wrap(std::make_shared<XMLMessage>(
                core_->Request(MessageIn(Message), TextOf(Tag), static_cast<std::int32_t>(TimeOut))));
        });
    }
    HRESULT STDMETHODCALLTYPE get_ReceiveMode(::APReceiveMode* Result) override {
        return Get(Result, [&] { return core_->ReceiveMode(); });
    }
    HRESULT STDMETHODCALLTYPE put_ReceiveMode(::APReceiveMode Value) override {
        return Do([&] { core_->SetReceiveMode(ReceiveModeOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_SendType(::APDataType* Result) override {
        return Get(Result, [&] { return core_->SendType(); });
    }
    HRESULT STDMETHODCALLTYPE put_SendType(::APDataType Value) override {
        return Do([&] { core_->SetSendType(DataTypeOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_RawFrameLimit(long* Result) override {
        return GetLimit(Result, &APLimits::raw_frame);
    }
    HRESULT STDMETHODCALLTYPE put_RawFrameLimit(long Value) override {
        return PutLimit(&APLimits::raw_frame, Value);
    }
    HRESULT STDMETHODCALLTYPE Admit() override {
        return Do([&] { core_->Admit(); });
    }
    HRESULT STDMETHODCALLTYPE SetKeepAlive(VARIANT_BOOL On) override {
        return Do([&] { core_->SetKeepAlive(On != VARIANT_FALSE); });
    }
    HRESULT STDMETHODCALLTYPE get_Identifier(BSTR* Result) override {
        return Get(Result, [&] { return core_->Identifier(); });
    }
    HRESULT STDMETHODCALLTYPE get_LocalAddress(BSTR* Result) override {
        return Get(Result, [&] { return core_->LocalAddress(); });
    }
    HRESULT STDMETHODCALLTYPE get_LocalPort(long* Result) override {
        return Get(Result, [&] { return core_->LocalPort(); });
    }
    HRESULT STDMETHODCALLTYPE get_RemoteAddress(BSTR* Result) override {
        return Get(Result, [&] { return core_->RemoteAddress(); });
    }
    HRESULT STDMETHODCALLTYPE get_RemotePort(long* Result) override {
        return Get(Result, [&] { return core_->RemotePort(); });
    }

 private:
    Owner owner_;
};

Variant DataOf(const Block& block) {
    return block.data_type == DataType::XML ? VariantOf(block.data) : VariantOfBytes(block.data);
}

DataType DataTypeOf(::APDataType type) {
    if (type != apdtRaw && type != apdtAny && type != apdtXML) Raise(RuntimeError::InvalidProcedureCall);
    return static_cast<DataType>(type);
}

template Ptr<InterfaceOf<Block>> Wrap(std::shared_ptr<Block>);
template Ptr<InterfaceOf<APClient>> Wrap(std::shared_ptr<APClient>);

}  // namespace kq::automation
