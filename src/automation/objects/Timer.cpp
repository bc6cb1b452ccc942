// Timers.
#include "automation/Coclasses.h"
#include "automation/Events.h"
#include "automation/Object.h"
#include "automation/Objects.h"

namespace kq::automation {
namespace {

constexpr DISPID kTick = 1;

class TimerObject final : public Object<TimerObject, Timer, ::_Timer, ::Timer, EventSource<::_TimerEvents>> {
 public:
    explicit TimerObject(CorePtr core) : Object(std::move(core)) {
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

}  // namespace

template <>
Ptr<IUnknown> New<::Timer>() {
    return Ptr<IUnknown>(TimerObject::For(std::make_shared<Timer>(ThreadPlatform())).Get());
}

}  // namespace kq::automation
