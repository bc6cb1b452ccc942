// What the system calls: the class factory, registration, and whether the DLL may go.
#include <olectl.h>
#include <string_view>
#include <windows.h>

#include "automation/CoclassTable.h"
#include "automation/Counted.h"
#include "automation/Guard.h"
#include "automation/Module.h"
#include "automation/Registration.h"
#include "automation/TypeLibraries.h"

namespace kq::automation {
namespace {

class ClassFactory final : public Counted<IClassFactory> {
 public:
    explicit ClassFactory(const CoclassEntry& entry) : entry_(entry) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        return Guard(iid, [&] {
            Given(out) = nullptr;
            if (outer) throw Failure(CLASS_E_NOAGGREGATION);
            KeepTypeLibraries();
            Check(entry_.make()->QueryInterface(iid, out));
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        LockModule(lock != FALSE);
        return S_OK;
    }

 private:
    const CoclassEntry& entry_;
};

}  // namespace
}  // namespace kq::automation

using namespace kq::automation;

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** out) {
    return Guard(iid, [&] {
        Given(out) = nullptr;
        for (const auto& entry : Coclasses()) {
            if (entry.id != id) continue;
            Check(Ptr<IClassFactory>::Attach(new ClassFactory(entry))->QueryInterface(iid, out));
            return;
        }
        throw Failure(CLASS_E_CLASSNOTAVAILABLE);
    });
}

STDAPI DllCanUnloadNow() {
    if (!CanUnload()) return S_FALSE;
    ForgetTypeLibraries();
    return S_OK;
}

STDAPI DllRegisterServer() {
    return Register(Scope::Machine);
}

STDAPI DllUnregisterServer() {
    return Unregister(Scope::Machine);
}

// regsvr32 /n /i:user registers for the user alone; without a word it is for the machine.
STDAPI DllInstall(BOOL install, LPCWSTR command) {
    const std::wstring_view word = command ? command : L"";
    if (word != L"" && word != L"user") return E_INVALIDARG;
    const Scope scope = word == L"user" ? Scope::User : Scope::Machine;
    return install ? Register(scope) : Unregister(scope);
}
