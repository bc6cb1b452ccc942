#include "automation/AppObjectOfHost.h"

#include <dispex.h>

#include "automation/Convert.h"

namespace kq::automation {
namespace {

class AppObjectOfHost final : public AppObject {
 public:
    explicit AppObjectOfHost(Ptr<IDispatch> object) : object_(std::move(object)) {}

    std::optional<std::string> Property(std::string_view name) const override {
        const auto id = IdOf(name);
        if (!id) return std::nullopt;
        Variant value;
        if (!Get(*id, DISPATCH_PROPERTYGET | DISPATCH_METHOD, value) &&
            !Get(*id, DISPATCH_PROPERTYGET, value))
            return std::nullopt;
        Variant text;
        if (FAILED(VariantChangeType(&text, &value, VARIANT_ALPHABOOL, VT_BSTR))) return std::nullopt;
        return TextOf(text.bstrVal);
    }

 private:
    // Objects of script classes may answer only the second question.
    std::optional<DISPID> IdOf(std::string_view name) const {
        std::wstring wide = WideOf(name);
        LPOLESTR names = wide.data();
        DISPID id = DISPID_UNKNOWN;
        if (SUCCEEDED(object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id))) return id;
        const auto by_expression = object_.As<IDispatchEx>();
        if (!by_expression) return std::nullopt;
        BSTR text = NewBSTR(name);
        const HRESULT found = by_expression->GetDispID(text, fdexNameCaseInsensitive, &id);
        SysFreeString(text);
        if (FAILED(found)) return std::nullopt;
        return id;
    }

    // Whatever a member is, both kinds of call at once are right. But some script engines then take a value
    // for a function.
    bool Get(DISPID id, WORD kinds, Variant& value) const {
        DISPPARAMS none{};
        value = Variant();
        return SUCCEEDED(
            object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kinds, &none, &value, nullptr, nullptr));
    }

    Ptr<IDispatch> object_;
};

}  // namespace

std::shared_ptr<AppObject> AppObjectOf(Ptr<IDispatch> object) {
    if (!object) return nullptr;
    return std::make_shared<AppObjectOfHost>(std::move(object));
}

}  // namespace kq::automation
