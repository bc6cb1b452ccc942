// Statistics.
#include <cmath>

#include "automation/Object.h"
#include "automation/Objects.h"

namespace kq::automation {
namespace {

// Rounds halves to the even neighbour.
std::int64_t WholeNumber(double value) {
    constexpr double kEnd = 9223372036854775808.0;  // 2 to the power of 63
    if (!(value >= -kEnd && value < kEnd)) Raise(RuntimeError::Overflow);
    return static_cast<std::int64_t>(std::nearbyint(value));
}

}  // namespace

template <>
class ObjectOf<Statistics> final : public Object<Statistics> {
 public:
    using Object::Object;

    HRESULT STDMETHODCALLTYPE get_Value(BSTR Name, double* Result) override {
        return Get(Result, [&] { return static_cast<double>(core_->Value(TextOf(Name))); });
    }
    HRESULT STDMETHODCALLTYPE put_Value(BSTR Name, double Value) override {
        return Do([&] { core_->Set(TextOf(Name), WholeNumber(Value)); });
    }
    HRESULT STDMETHODCALLTYPE Increment(BSTR Name, long By) override {
        return Do([&] { core_->Increment(TextOf(Name), By); });
    }
    HRESULT STDMETHODCALLTYPE Record(BSTR Name, double Milliseconds) override {
        return Do([&] { core_->Record(TextOf(Name), Milliseconds); });
    }
    HRESULT STDMETHODCALLTYPE get_DurationCount(BSTR Name, double* Result) override {
        return Get(Result, [&] { return static_cast<double>(core_->DurationOf(TextOf(Name)).count); });
    }
    HRESULT STDMETHODCALLTYPE get_DurationTotal(BSTR Name, double* Result) override {
        return Get(Result, [&] { return core_->DurationOf(TextOf(Name)).total; });
    }
    HRESULT STDMETHODCALLTYPE get_DurationMinimum(BSTR Name, double* Result) override {
        return Get(Result, [&] { return core_->DurationOf(TextOf(Name)).minimum; });
    }
    HRESULT STDMETHODCALLTYPE get_DurationMaximum(BSTR Name, double* Result) override {
        return Get(Result, [&] { return core_->DurationOf(TextOf(Name)).maximum; });
    }
    HRESULT STDMETHODCALLTYPE get_DurationMean(BSTR Name, double* Result) override {
        return Get(Result, [&] { return core_->DurationOf(TextOf(Name)).Mean(); });
    }
    HRESULT STDMETHODCALLTYPE get_Names(SAFEARRAY** Result) override {
        return Get(Result, [&] { return core_->Names(); });
    }
    HRESULT STDMETHODCALLTYPE get_DurationNames(SAFEARRAY** Result) override {
        return Get(Result, [&] { return core_->DurationNames(); });
    }
    HRESULT STDMETHODCALLTYPE Clear() override {
        return Do([&] { core_->Clear(); });
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* Result) override {
        return Get(Result, [&] { return core_->Text(); });
    }
};

template Ptr<InterfaceOf<Statistics>> Wrap(std::shared_ptr<Statistics>);

}  // namespace kq::automation
