#include "automation/Host.h"

#include <algorithm>
#include <functional>

#include "automation/ManifestContext.h"
#include "automation/WideText.h"

namespace kq {
namespace {

class Apartment final : public testing::Environment {
 public:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        context_ = std::make_unique<ManifestContext>(ManifestPath(), FolderOfDll());
    }
    void TearDown() override {
        context_.reset();
        CoUninitialize();
    }

 private:
    std::unique_ptr<ManifestContext> context_;
};

[[maybe_unused]] const auto* const apartment = testing::AddGlobalTestEnvironment(new Apartment);

std::string Shown(const VARIANT& value) {
    _variant_t direct;
    if (FAILED(VariantCopyInd(&direct, const_cast<VARIANT*>(&value)))) return "?";
    if (direct.vt == VT_DISPATCH || direct.vt == VT_UNKNOWN) return direct.punkVal ? "object" : "Nothing";
    _variant_t text;
    if (FAILED(VariantChangeType(&text, &direct, VARIANT_ALPHABOOL, VT_BSTR))) return "?";
    return Narrow(text.bstrVal);
}

}  // namespace

std::wstring DllPath() {
    return Wide(KQ_DLL);
}

std::wstring ManifestPath() {
    return Wide(KQ_MANIFEST);
}

std::wstring FolderOfDll() {
    const std::wstring path = DllPath();
    return path.substr(0, path.find_last_of(L"\\/"));
}

LastError::LastError() {
    Ptr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) != S_OK) return;
    BSTR source_text = nullptr;
    BSTR description_text = nullptr;
    info->GetGUID(&id);
    info->GetSource(&source_text);
    info->GetDescription(&description_text);
    source = source_text ? source_text : L"";
    description = description_text ? description_text : L"";
    SysFreeString(source_text);
    SysFreeString(description_text);
}

DISPID Late::IdOf(const wchar_t* name) const {
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    DISPID id = DISPID_UNKNOWN;
    object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

HRESULT Late::Call(const wchar_t* name, WORD flags, std::vector<_variant_t> arguments,
                   const std::vector<const wchar_t*>& names) {
    std::vector<LPOLESTR> all{const_cast<LPOLESTR>(name)};
    for (const auto* argument : names)
        all.push_back(const_cast<LPOLESTR>(argument));
    std::vector<DISPID> ids(all.size());
    const HRESULT found = object_->GetIDsOfNames(IID_NULL, all.data(), static_cast<UINT>(all.size()),
                                                 LOCALE_USER_DEFAULT, ids.data());
    if (FAILED(found)) return found;
    std::reverse(arguments.begin(), arguments.end());
    std::vector<DISPID> named(ids.rbegin(), ids.rend() - 1);
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) named = {DISPID_PROPERTYPUT};
    DISPPARAMS parameters{arguments.data(), named.data(), static_cast<UINT>(arguments.size()),
                          static_cast<UINT>(named.size())};
    EXCEPINFO exception{};
    result.Clear();
    const HRESULT outcome = object_->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                            &result, &exception, &wrong_argument);
    raised = exception.scode;
    source = exception.bstrSource ? exception.bstrSource : L"";
    description = exception.bstrDescription ? exception.bstrDescription : L"";
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    return outcome;
}

HRESULT HostObject::QueryInterface(REFIID iid, void** out) {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == events;
    *out = known ? static_cast<IDispatch*>(this) : nullptr;
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT HostObject::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                           UINT*) {
    std::string line = std::to_string(id) + "(";
    for (UINT i = parameters->cArgs; i > 0; --i)
        line += Shown(parameters->rgvarg[i - 1]) + (i > 1 ? ", " : "");
    heard.push_back(line + ")");
    if (on_event) on_event(id);
    return answer;
}

Ptr<IConnectionPoint> PointOf(IUnknown* source, REFIID events) {
    Ptr<IConnectionPoint> point;
    const auto container = Ptr<IUnknown>(source).As<IConnectionPointContainer>();
    if (container) container->FindConnectionPoint(events, point.Out());
    return point;
}

DWORD Advise(IUnknown* source, REFIID events, IUnknown* sink) {
    DWORD cookie = 0;
    const auto point = PointOf(source, events);
    EXPECT_TRUE(point);
    EXPECT_EQ(point->Advise(sink, &cookie), S_OK);
    return cookie;
}

bool Await(const std::function<bool()>& done) {
    const auto end = GetTickCount64() + 20'000;
    while (!done()) {
        if (GetTickCount64() > end) return false;
        MsgWaitForMultipleObjectsEx(0, nullptr, 100, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    }
    return true;
}

}  // namespace kq
