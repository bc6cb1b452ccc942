// Timers.
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"

namespace kq::automation {
namespace {

constexpr DISPID kTick = 1;

}  // namespace

template <>
class ObjectOf<Timer> final : public Object<Timer, EventSource<::_TimerEvents>> {
 public:
    explicit ObjectOf(CorePtr core) : Object(std::move(core)) {
        core_->Tick.Connect(owner_, [this] { Fire(kTick, [] { return Arguments(); }); });
    }

    HRESULT STDMETHODCALLTYPE get_Enabled(VARIANT_BOOL* Result) override {
        return Get(Result, [&] { return core_->Enabled(); });
    }
    HRESULT STDMETHODCALLTYPE put_Enabled(VARIANT_BOOL Value) override {
        return Do([&] { core_->SetEnabled(Value != VARIANT_FALSE); });
    }
    HRESULT STDMETHODCALLTYPE get_Interval(long* Result) override {
        return Get(Result, [&] { return core_->Interval(); });
    }
    HRESULT STDMETHODCALLTYPE put_Interval(long Value) override {
        return Do([&] { core_->SetInterval(static_cast<std::int32_t>(Value)); });
    }

 private:
    Owner owner_;
};

template Ptr<InterfaceOf<Timer>> Wrap(std::shared_ptr<Timer>);

}  // namespace kq::automation
