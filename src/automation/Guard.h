// The boundary between the core's exceptions and automation's results. Every member that a host can call runs
// its body in Guard; nothing else catches.
//
// A kq::Error becomes an error object with the number, source and description that the core gave. Hosts see a
// run-time error n as 0x800A0000 + n, and a connection's Winsock number likewise, since a positive number
// would say success.
#pragma once

#include <exception>

#include "automation/Ptr.h"

struct IErrorInfo;

namespace kq::automation {

// A failed call of the system or of a foreign object, with what the callee said about it.
class Failure : public std::exception {
 public:
    explicit Failure(HRESULT code);
    HRESULT Code() const { return code_; }
    const Ptr<IErrorInfo>& Info() const { return info_; }
    const char* what() const noexcept override { return "a call failed"; }

 private:
    HRESULT code_;
    Ptr<IErrorInfo> info_;
};

inline void Check(HRESULT result) {
    if (FAILED(result)) throw Failure(result);
}

// The argument behind a pointer that a caller must give.
template <class T>
T& Given(T* pointer) {
    if (!pointer) throw Failure(E_POINTER);
    return *pointer;
}

// An object into an out parameter, which is asked for first: without one the object is let go.
template <class T>
void Give(T** out, Ptr<T> object) {
    T*& place = Given(out);
    place = object.Detach();
}

// The number as hosts see it.
HRESULT ResultOf(int error_number) noexcept;

// Makes the exception in flight the thread's error object and returns its code. Call it inside a catch.
HRESULT ReportException(REFIID iid) noexcept;

// Begins a call: no error object is left from an earlier one.
void ForgetError() noexcept;

template <class F>
HRESULT Guard(REFIID iid, F&& body) noexcept {
    ForgetError();
    try {
        body();
        return S_OK;
    } catch (...) {
        return ReportException(iid);
    }
}

}  // namespace kq::automation
