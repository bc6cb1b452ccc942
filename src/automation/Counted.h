// An object of one interface that only the system and hosts hold, such as a class factory or an enumerator.
#pragma once

#include <unknwn.h>

#include "automation/Module.h"

namespace kq::automation {

template <class Interface>
class Counted : public Interface {
 public:
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        *out = iid == IID_IUnknown || iid == __uuidof(Interface) ? static_cast<Interface*>(this) : nullptr;
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

 protected:
    Counted() = default;  // with the reference of whoever makes it
    virtual ~Counted() = default;

 private:
    LONG references_ = 1;
    Living living_;
};

}  // namespace kq::automation
