// The limits of connections as properties: bytes and milliseconds as Long, both ways.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include <kqappsession/APClient.h>
#include <kqappsession/Error.h>

#include "automation/Objects.h"

namespace kq::automation {

// The largest Long stands for all that is larger.
template <class Number>
std::int32_t LongOf(Number number) {
    constexpr auto kLargest = std::numeric_limits<std::int32_t>::max();
    return std::cmp_less(number, kLargest) ? static_cast<std::int32_t>(number) : kLargest;
}

inline long NotBelow0(long value) {
    if (value < 0) Raise(RuntimeError::InvalidProcedureCall);
    return value;
}

// The properties that a connection and a listener have in common. Base: the automation object of either.
template <class Base>
class LimitProperties : public Base {
 public:
    using Base::Base;

    HRESULT STDMETHODCALLTYPE get_ReceiveType(::APDataType* Result) override {
        return this->Get(Result, [&] { return this->core_->ReceiveType(); });
    }
    HRESULT STDMETHODCALLTYPE put_ReceiveType(::APDataType Value) override {
        return this->Do([&] { this->core_->SetReceiveType(DataTypeOf(Value)); });
    }
    HRESULT STDMETHODCALLTYPE get_FrameLimit(long* Result) override {
        return GetLimit(Result, &APLimits::frame);
    }
    HRESULT STDMETHODCALLTYPE put_FrameLimit(long Value) override {
        return PutLimit(&APLimits::frame, Value);
    }
    HRESULT STDMETHODCALLTYPE get_AdmittedFrameLimit(long* Result) override {
        return GetLimit(Result, &APLimits::admitted_frame);
    }
    HRESULT STDMETHODCALLTYPE put_AdmittedFrameLimit(long Value) override {
        return PutLimit(&APLimits::admitted_frame, Value);
    }
    HRESULT STDMETHODCALLTYPE get_UnsentLimit(long* Result) override {
        return GetLimit(Result, &APLimits::unsent);
    }
    HRESULT STDMETHODCALLTYPE put_UnsentLimit(long Value) override {
        return PutLimit(&APLimits::unsent, Value);
    }
    HRESULT STDMETHODCALLTYPE get_FirstFrameTimeOut(long* Result) override {
        return this->Get(Result, [&] { return LongOf(this->core_->Limits().first_frame.count()); });
    }
    HRESULT STDMETHODCALLTYPE put_FirstFrameTimeOut(long Value) override {
        return Change([&](APLimits& limits) { limits.first_frame = Milliseconds(NotBelow0(Value)); });
    }

 protected:
    HRESULT GetLimit(long* result, std::size_t APLimits::*limit) {
        return this->Get(result, [&] { return LongOf(this->core_->Limits().*limit); });
    }
    HRESULT PutLimit(std::size_t APLimits::*limit, long value) {
        return Change([&](APLimits& limits) { limits.*limit = static_cast<std::size_t>(NotBelow0(value)); });
    }

 private:
    template <class F>
    HRESULT Change(F&& change) {
        return this->Do([&] {
            APLimits limits = this->core_->Limits();
            change(limits);
            this->core_->SetLimits(limits);
        });
    }
};

}  // namespace kq::automation
