// Words for tests that are hosts: they use the DLL by its manifest, through its headers, like any C++
// program.
#pragma once

#include <KQAppProtocolLib.h>
#include <KQAppSessionLib.h>
#include <KQStatisticsLib.h>
#include <KQTimerLib.h>
#include <KQWebDataLib.h>
#include <KQXMLBusClientLib.h>
#include <KQXMLMessageLib.h>
#include <comdef.h>
#include <functional>
#include <memory>
#include <ocidl.h>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/Ptr.h"

namespace kq {

using automation::Ptr;

// The DLL and its manifest as paths of this machine.
std::wstring DllPath();
std::wstring ManifestPath();
std::wstring FolderOfDll();

inline _bstr_t Text(const wchar_t* text) {
    return _bstr_t(text);
}

// A text argument by reference.
class TextReference {
 public:
    explicit TextReference(const wchar_t* text) : text_(SysAllocString(text)) {}
    TextReference(const TextReference&) = delete;
    TextReference& operator=(const TextReference&) = delete;
    ~TextReference() { SysFreeString(text_); }
    operator BSTR*() { return &text_; }

 private:
    BSTR text_;
};

template <class Interface>
Ptr<Interface> Create(const wchar_t* prog_id) {
    CLSID id{};
    Ptr<Interface> object;
    EXPECT_EQ(CLSIDFromProgID(prog_id, &id), S_OK) << prog_id;
    EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), object.OutVoid()),
              S_OK);
    return object;
}
inline Ptr<_KQAppSessClient> NewClient() {
    return Create<_KQAppSessClient>(L"KQAppSessionLib.KQAppSessClient");
}
inline Ptr<_KQAppSessServer> NewServer() {
    return Create<_KQAppSessServer>(L"KQAppSessionLib.KQAppSessServer");
}
inline Ptr<_XMLMessage> NewMessage() {
    return Create<_XMLMessage>(L"KQXMLMessageLib.XMLMessage");
}
inline Ptr<_Timer> NewTimer() {
    return Create<_Timer>(L"KQTimerLib.Timer");
}

// What a text property holds.
template <class Interface>
std::wstring Read(const Ptr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    BSTR text = nullptr;
    EXPECT_EQ((object.Get()->*get)(&text), S_OK);
    const _bstr_t owned(text, false);
    return text ? text : L"";
}

template <class A, class B>
bool SameObject(const Ptr<A>& a, const Ptr<B>& b) {
    return a.template As<IUnknown>().Get() == b.template As<IUnknown>().Get();
}

// The thread's error object.
struct LastError {
    LastError();
    GUID id{};
    std::wstring source;
    std::wstring description;
};

// Late-bound access, as script engines do it.
class Late {
 public:
    template <class T>
    explicit Late(const Ptr<T>& object) : object_(object.Get()) {}

    DISPID IdOf(const wchar_t* name) const;
    // Arguments in the order of the call; by name with names, which come after those without.
    HRESULT Call(const wchar_t* name, WORD flags, std::vector<_variant_t> arguments = {},
                 const std::vector<const wchar_t*>& names = {});
    HRESULT Get(const wchar_t* name, std::vector<_variant_t> arguments = {}) {
        return Call(name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, std::move(arguments));
    }
    HRESULT Do(const wchar_t* name, std::vector<_variant_t> arguments = {}) {
        return Call(name, DISPATCH_METHOD, std::move(arguments));
    }
    HRESULT Let(const wchar_t* name, std::vector<_variant_t> arguments) {
        return Call(name, DISPATCH_PROPERTYPUT, std::move(arguments));
    }
    HRESULT Set(const wchar_t* name, std::vector<_variant_t> arguments) {
        return Call(name, DISPATCH_PROPERTYPUTREF, std::move(arguments));
    }

    _variant_t result;
    HRESULT raised = S_OK;  // what the exception says
    std::wstring source;
    std::wstring description;
    UINT wrong_argument = 99;

 private:
    Ptr<IDispatch> object_;
};

inline _variant_t LeftOut() {
    _variant_t value;
    value.vt = VT_ERROR;
    value.scode = DISP_E_PARAMNOTFOUND;
    return value;
}

// A host's own automation object. As a sink it keeps what it was told: "id(first, second)".
class HostObject : public IDispatch {
 public:
    std::vector<std::string> heard;
    std::function<void(DISPID)> on_event;
    HRESULT answer = S_OK;
    IID events = IID_IDispatch;  // an interface that it answers beside IDispatch

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                     EXCEPINFO*, UINT*) override;

    ULONG references = 1;
};

Ptr<IConnectionPoint> PointOf(IUnknown* source, REFIID events);
DWORD Advise(IUnknown* source, REFIID events, IUnknown* sink);
// Delivers window messages until `done` holds. False when that takes longer than a machine ever should.
bool Await(const std::function<bool()>& done);

}  // namespace kq
