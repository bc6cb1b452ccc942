// A relay of events to script objects, for tests: the script hosts that they run in cannot connect events
// themselves. As an automation object "KQTest.Relay":
//
//   Connect Source, Handler    the events of Source call the methods of that name on Handler
//   Disconnect Source
//   Pump Milliseconds          waits for a window message, at most that long, and delivers what has come
//   Print Text                 one line of UTF-8 to the standard output
//   OpenBus                    opens a bus on loopback, as long as this object lives; returns its port
//   FailNextAccept             the next connection that a listener accepts is lost, with the error 10024
#include <comdef.h>
#include <cwchar>
#include <dispex.h>
#include <initguid.h>
#include <map>
#include <memory>
#include <ocidl.h>
#include <olectl.h>
#include <string>
#include <vector>

#include "automation/FailingAccept.h"
#include "automation/Ptr.h"
#include "automation/TestBus.h"

using kq::automation::Ptr;

namespace {

// {5D0E9C74-98A5-4A5F-9B6C-0E0C5A6B1F2D}
constexpr GUID kRelayId = {0x5d0e9c74, 0x98a5, 0x4a5f, {0x9b, 0x6c, 0x0e, 0x0c, 0x5a, 0x6b, 0x1f, 0x2d}};
constexpr wchar_t kRelayIdText[] = L"{5D0E9C74-98A5-4A5F-9B6C-0E0C5A6B1F2D}";
constexpr wchar_t kProgId[] = L"KQTest.Relay";

LONG live = 0;

// The source interface of an object and the names of its events.
Ptr<ITypeInfo> EventsOf(IUnknown* source) {
    const auto provider = Ptr<IUnknown>(source).As<IProvideClassInfo>();
    Ptr<ITypeInfo> info;
    if (!provider || FAILED(provider->GetClassInfo(info.Out()))) return {};
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    const UINT count = attributes->cImplTypes;
    info->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < count; ++i) {
        INT flags = 0;
        info->GetImplTypeFlags(i, &flags);
        if (flags != (IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE)) continue;
        HREFTYPE reference = 0;
        Ptr<ITypeInfo> events;
        info->GetRefTypeOfImplType(i, &reference);
        info->GetRefTypeInfo(reference, events.Out());
        return events;
    }
    return {};
}

GUID IdOf(ITypeInfo& info) {
    TYPEATTR* attributes = nullptr;
    info.GetTypeAttr(&attributes);
    const GUID id = attributes->guid;
    info.ReleaseTypeAttr(attributes);
    return id;
}

// Script classes answer only the second question.
bool FindMember(IDispatch* object, BSTR name, DISPID& id) {
    if (SUCCEEDED(object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id))) return true;
    const auto by_expression = Ptr<IDispatch>(object).As<IDispatchEx>();
    return by_expression && SUCCEEDED(by_expression->GetDispID(name, fdexNameCaseInsensitive, &id));
}

template <class Main>
class Counted : public Main {
 public:
    Counted() { InterlockedIncrement(&live); }
    virtual ~Counted() { InterlockedDecrement(&live); }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

 private:
    LONG references_ = 1;
};

template <class Main>
class Dispatching : public Counted<Main> {
 public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        *out = iid == IID_IUnknown || iid == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
        if (!*out) return E_NOINTERFACE;
        this->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
};

class Sink final : public Dispatching<IDispatch> {
 public:
    Sink(Ptr<ITypeInfo> events, Ptr<IDispatch> handler)
        : events_(std::move(events)), handler_(std::move(handler)) {}

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    // The handler gets each argument by reference; what it writes goes back where the event's was one, too.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID locale, WORD, DISPPARAMS* given, VARIANT*,
                                     EXCEPINFO*, UINT*) override {
        BSTR name = nullptr;
        UINT count = 0;
        events_->GetNames(id, &name, 1, &count);
        const _bstr_t owned(name, false);
        DISPID member = 0;
        if (!FindMember(handler_.Get(), name, member)) return S_OK;
        std::vector<_variant_t> values(given->cArgs);
        std::vector<VARIANT> arguments(given->cArgs);
        for (UINT i = 0; i < given->cArgs; ++i) {
            VariantCopyInd(&values[i], &given->rgvarg[i]);
            arguments[i].vt = VT_BYREF | VT_VARIANT;
            arguments[i].pvarVal = &values[i];
        }
        DISPPARAMS parameters{arguments.data(), nullptr, given->cArgs, 0};
        handler_->Invoke(member, IID_NULL, locale, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
        for (UINT i = 0; i < given->cArgs; ++i) {
            const VARIANT& target = given->rgvarg[i];
            if (target.vt == (VT_BYREF | VT_BOOL))
                *target.pboolVal = static_cast<bool>(values[i]) ? VARIANT_TRUE : 0;
            if (target.vt == (VT_BYREF | VT_I4)) *target.plVal = static_cast<long>(values[i]);
        }
        return S_OK;
    }

 private:
    Ptr<ITypeInfo> events_;
    Ptr<IDispatch> handler_;
};

class Connection {
 public:
    Connection(IUnknown* source, IDispatch* handler) {
        const auto events = EventsOf(source);
        const auto container = Ptr<IUnknown>(source).As<IConnectionPointContainer>();
        if (!events || !container) _com_issue_error(CONNECT_E_CANNOTCONNECT);
        _com_util::CheckError(container->FindConnectionPoint(IdOf(*events.Get()), point_.Out()));
        const auto sink = Ptr<IDispatch>::Attach(new Sink(events, Ptr<IDispatch>(handler)));
        _com_util::CheckError(point_->Advise(sink.Get(), &cookie_));
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        if (point_ && cookie_) point_->Unadvise(cookie_);
    }

 private:
    Ptr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

void Pump(DWORD milliseconds) {
    MsgWaitForMultipleObjectsEx(0, nullptr, milliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) return PostQuitMessage(static_cast<int>(message.wParam));
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void Print(const std::wstring& line) {
    char text[4096];
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, text, sizeof(text) - 2, nullptr, nullptr);
    if (length <= 0) return;
    text[length - 1] = '\n';
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text, static_cast<DWORD>(length), &written, nullptr);
}

class Relay final : public Dispatching<IDispatch> {
 public:
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        for (std::size_t i = 0; i < std::size(kMembers); ++i) {
            if (_wcsicmp(names[0], kMembers[i].name) != 0) continue;
            ids[0] = static_cast<DISPID>(i + 1);
            return S_OK;
        }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT* result,
                                     EXCEPINFO*, UINT*) override {
        if (id < 1 || static_cast<std::size_t>(id) > std::size(kMembers)) return DISP_E_MEMBERNOTFOUND;
        const Member& member = kMembers[id - 1];
        if (given->cArgs != member.arguments) return DISP_E_BADPARAMCOUNT;
        try {
            std::vector<_variant_t> values(given->cArgs);  // in the order of the call
            for (UINT i = 0; i < given->cArgs; ++i)
                VariantCopyInd(&values[given->cArgs - 1 - i], &given->rgvarg[i]);
            _variant_t returned = (this->*member.call)(values);
            if (result) *result = returned.Detach();
            return S_OK;
        } catch (const _com_error& error) {
            return error.Error();
        }
    }

 private:
    using Values = std::vector<_variant_t>;
    struct Member {
        const wchar_t* name;
        UINT arguments;
        _variant_t (Relay::*call)(Values&);
    };
    static const Member kMembers[6];

    _variant_t Connect(Values& values) {
        connections_.try_emplace(IdentityOf(values[0]), values[0].pdispVal, values[1].pdispVal);
        return {};
    }
    _variant_t Disconnect(Values& values) {
        connections_.erase(IdentityOf(values[0]));
        return {};
    }
    _variant_t Pump(Values& values) {
        ::Pump(static_cast<DWORD>(static_cast<long>(values[0])));
        return {};
    }
    _variant_t Print(Values& values) {
        ::Print(static_cast<const wchar_t*>(_bstr_t(values[0])));
        return {};
    }
    _variant_t OpenBus(Values&) {
        if (!bus_) bus_ = std::make_unique<kq::TestBus>();
        return bus_->Port();
    }
    _variant_t FailNextAccept(Values&) {
        if (!kq::FailNextAccept()) _com_issue_error(E_FAIL);
        return {};
    }

    static IUnknown* IdentityOf(const _variant_t& value) {
        if (value.vt != VT_DISPATCH || !value.pdispVal) _com_issue_error(DISP_E_TYPEMISMATCH);
        return Ptr<IDispatch>(value.pdispVal).As<IUnknown>().Get();
    }

    std::map<IUnknown*, Connection> connections_;  // by the source, which its connection keeps
    std::unique_ptr<kq::TestBus> bus_;
};

const Relay::Member Relay::kMembers[] = {
    {L"Connect", 2, &Relay::Connect}, {L"Disconnect", 1, &Relay::Disconnect},
    {L"Pump", 1, &Relay::Pump},       {L"Print", 1, &Relay::Print},
    {L"OpenBus", 0, &Relay::OpenBus}, {L"FailNextAccept", 0, &Relay::FailNextAccept},
};

class Factory final : public Counted<IClassFactory> {
 public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        *out = iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        if (outer) return CLASS_E_NOAGGREGATION;
        return Ptr<IDispatch>::Attach(new Relay)->QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        lock ? InterlockedIncrement(&live) : InterlockedDecrement(&live);
        return S_OK;
    }
};

std::wstring Key(const std::wstring& name) {
    return L"Software\\Classes\\" + name;
}

bool WriteKey(const std::wstring& name, const wchar_t* value, const std::wstring& text) {
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, Key(name).c_str(), value, REG_SZ, text.c_str(),
                           static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** out) {
    if (id != kRelayId) return CLASS_E_CLASSNOTAVAILABLE;
    return Ptr<IClassFactory>::Attach(new Factory)->QueryInterface(iid, out);
}

STDAPI DllCanUnloadNow() {
    return live == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    HMODULE module = nullptr;
    wchar_t path[MAX_PATH];
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&live), &module);
    GetModuleFileNameW(module, path, MAX_PATH);
    const std::wstring server = std::wstring(L"CLSID\\") + kRelayIdText + L"\\InprocServer32";
    const bool done = WriteKey(server, nullptr, path) && WriteKey(server, L"ThreadingModel", L"Apartment") &&
                      WriteKey(std::wstring(kProgId) + L"\\CLSID", nullptr, kRelayIdText);
    return done ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, Key(std::wstring(L"CLSID\\") + kRelayIdText).c_str());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, Key(kProgId).c_str());
    return S_OK;
}
