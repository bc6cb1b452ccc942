#include "automation/Convert.h"

#include <cstring>
#include <olectl.h>

#include <kqappsession/Error.h>

#include "automation/AppObjectOfHost.h"
#include "base/Convert.h"
#include "base/Utf.h"

namespace kq::automation {
namespace {

// The value of a Failure's code, if it is one of the run time's conversion errors, as the core names it.
[[noreturn]] void RaiseConversion(HRESULT code) {
    Raise(code == DISP_E_OVERFLOW ? RuntimeError::Overflow : RuntimeError::TypeMismatch);
}

class ArrayData {
 public:
    explicit ArrayData(SAFEARRAY* array) : array_(array) { Check(SafeArrayAccessData(array, &data_)); }
    ArrayData(const ArrayData&) = delete;
    ArrayData& operator=(const ArrayData&) = delete;
    ~ArrayData() { SafeArrayUnaccessData(array_); }
    template <class T>
    T* As() const {
        return static_cast<T*>(data_);
    }

 private:
    SAFEARRAY* array_;
    void* data_ = nullptr;
};

std::size_t CountOf(SAFEARRAY* array) {
    std::size_t count = 1;
    for (UINT dimension = 0; dimension < array->cDims; ++dimension)
        count *= array->rgsabound[dimension].cElements;
    return count;
}

// Deleted when what fills it fails.
struct ArrayDeleter {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using ArrayPtr = std::unique_ptr<SAFEARRAY, ArrayDeleter>;

ArrayPtr NewVector(VARTYPE type, std::size_t count) {
    ArrayPtr array(SafeArrayCreateVector(type, 0, static_cast<ULONG>(count)));
    if (!array) throw std::bad_alloc();
    return array;
}

// The size of a variable of a type that is no VARIANT.
std::size_t SizeOf(VARTYPE type) {
    if (type & VT_ARRAY) return sizeof(SAFEARRAY*);
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR:
            return 4;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_DATE:
        case VT_CY:
            return 8;
        case VT_DECIMAL:
            return sizeof(DECIMAL);
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return sizeof(void*);
        default:
            RaiseConversion(DISP_E_TYPEMISMATCH);
    }
}

// Null for an object that has none.
Ptr<IEnumVARIANT> EnumeratorOf(IDispatch& object) {
    DISPPARAMS none{};
    Variant result;
    if (FAILED(object.Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT,
                             DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr))) {
        return {};
    }
    if (result.vt != VT_UNKNOWN && result.vt != VT_DISPATCH) return {};
    return Ptr<IUnknown>(result.punkVal).As<IEnumVARIANT>();
}

// An array of a script that keeps its arrays as objects: the members "length", "0", "1", ...
std::vector<std::string> ElementsOfScriptArray(const Ptr<IDispatch>& object) {
    const auto members = AppObjectOf(object);
    const auto length = members->Property("length");
    if (!length) RaiseConversion(DISP_E_TYPEMISMATCH);
    const std::int32_t count = TextToLong(*length);
    std::vector<std::string> texts;
    for (std::int32_t i = 0; i < count; ++i) {
        auto text = members->Property(std::to_string(i));
        if (!text) RaiseConversion(DISP_E_TYPEMISMATCH);
        texts.push_back(std::move(*text));
    }
    return texts;
}

std::vector<std::string> ElementsOf(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    Check(SafeArrayGetVartype(array, &type));
    const ArrayData data(array);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < CountOf(array); ++i) {
        if (type == VT_BSTR) {
            texts.push_back(TextOf(data.As<BSTR>()[i]));
        } else if (type == VT_VARIANT) {
            texts.push_back(TextOf(Changed(data.As<VARIANT>()[i], VT_BSTR).bstrVal));
        } else {
            RaiseConversion(DISP_E_TYPEMISMATCH);
        }
    }
    return texts;
}

}  // namespace

std::string TextOf(std::wstring_view text) {
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    return Utf16ToUtf8({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

std::wstring WideOf(std::string_view text) {
    const std::u16string wide = Utf8ToUtf16(text);
    return {wide.begin(), wide.end()};
}

std::string TextOf(BSTR text) {
    return text ? TextOf(std::wstring_view(text, SysStringLen(text))) : std::string();
}

BSTR NewBSTR(std::string_view text) {
    const std::wstring wide = WideOf(text);
    const BSTR result = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (!result) throw std::bad_alloc();
    return result;
}

Variant VariantOf(std::string_view text) {
    Variant value;
    value.bstrVal = NewBSTR(text);
    value.vt = VT_BSTR;
    return value;
}

Variant VariantOf(const std::string& text) {
    return VariantOf(std::string_view(text));
}

Variant VariantOf(const char* text) {
    return VariantOf(std::string_view(text));
}

Variant VariantOf(std::int32_t number) {
    return VariantOf(static_cast<long>(number));
}

Variant VariantOf(long number) {
    Variant value;
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

Variant VariantOf(double number) {
    Variant value;
    value.vt = VT_R8;
    value.dblVal = number;
    return value;
}

Variant VariantOf(bool boolean) {
    Variant value;
    value.vt = VT_BOOL;
    value.boolVal = BooleanOf(boolean);
    return value;
}

Variant VariantOf(Ptr<IDispatch> object) {
    Variant value;
    value.vt = VT_DISPATCH;
    value.pdispVal = object.Detach();
    return value;
}

Variant ByReference(long& number) {
    Variant value;
    value.vt = VT_BYREF | VT_I4;
    value.plVal = &number;
    return value;
}

Variant ByReference(VARIANT_BOOL& boolean) {
    Variant value;
    value.vt = VT_BYREF | VT_BOOL;
    value.pboolVal = &boolean;
    return value;
}

Variant ByReference(BSTR& text) {
    Variant value;
    value.vt = VT_BYREF | VT_BSTR;
    value.pbstrVal = &text;
    return value;
}

Variant ByReference(IDispatch*& object) {
    Variant value;
    value.vt = VT_BYREF | VT_DISPATCH;
    value.ppdispVal = &object;
    return value;
}

Variant Resolve(const VARIANT& value) {
    Variant result;
    Check(VariantCopyInd(&result, const_cast<VARIANT*>(&value)));
    return result;
}

Variant Changed(const VARIANT& value, VARTYPE type, LCID locale) {
    Variant result;
    const HRESULT changed =
        VariantChangeTypeEx(&result, const_cast<VARIANT*>(&value), locale, VARIANT_ALPHABOOL, type);
    if (FAILED(changed)) RaiseConversion(changed);
    return result;
}

bool Missing(const VARIANT* argument) {
    if (!argument) return true;
    if (argument->vt == (VT_BYREF | VT_VARIANT)) return Missing(argument->pvarVal);
    return argument->vt == VT_ERROR && argument->scode == DISP_E_PARAMNOTFOUND;
}

std::string TextOr(const VARIANT* argument, std::string_view otherwise) {
    return Missing(argument) ? std::string(otherwise) : TextOf(Changed(*argument, VT_BSTR).bstrVal);
}

std::int32_t LongOr(const VARIANT* argument, std::int32_t otherwise) {
    return Missing(argument) ? otherwise : static_cast<std::int32_t>(Changed(*argument, VT_I4).lVal);
}

bool BooleanOr(const VARIANT* argument, bool otherwise) {
    return Missing(argument) ? otherwise : Changed(*argument, VT_BOOL).boolVal != VARIANT_FALSE;
}

Secret SecretOr(const VARIANT* argument) {
    if (Missing(argument)) return {};
    Variant value = Changed(*argument, VT_BSTR);
    std::string text = TextOf(value.bstrVal);
    if (value.bstrVal) WipeMemory(value.bstrVal, SysStringByteLen(value.bstrVal));
    return Secret(std::move(text));
}

Ptr<IDispatch> ObjectOr(const VARIANT* argument) {
    if (Missing(argument)) return {};
    const Variant value = Resolve(*argument);
    if (value.vt == VT_EMPTY || value.vt == VT_NULL) return {};
    if (value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN) RaiseConversion(DISP_E_TYPEMISMATCH);
    if (!value.punkVal) return {};
    auto object = Ptr<IUnknown>(value.punkVal).As<IDispatch>();
    if (!object) RaiseConversion(DISP_E_TYPEMISMATCH);
    return object;
}

void CheckPicture(const VARIANT* argument) {
    const auto object = ObjectOr(argument);
    if (object && !object.As<IPicture>() && !object.As<IPictureDisp>()) RaiseConversion(DISP_E_TYPEMISMATCH);
}

void Store(VARIANT& target, const VARIANT& value) {
    if (target.vt == (VT_BYREF | VT_VARIANT)) {
        if (target.pvarVal->vt & VT_BYREF) return Store(*target.pvarVal, value);  // handed on by the caller
        Check(VariantCopy(target.pvarVal, const_cast<VARIANT*>(&value)));
        return;
    }
    if (!(target.vt & VT_BYREF)) {
        Check(VariantCopy(&target, const_cast<VARIANT*>(&value)));
        return;
    }
    const auto type = static_cast<VARTYPE>(target.vt & ~VT_BYREF);
    const std::size_t size = SizeOf(type);
    Variant changed = Changed(value, type);
    Variant old;
    if (type == VT_DECIMAL) {
        *target.pdecVal = changed.decVal;
        return;
    }
    old.vt = type;
    std::memcpy(&old.llVal, target.byref, size);
    std::memcpy(target.byref, &changed.llVal, size);
    changed.vt = VT_EMPTY;  // belongs to the variable
}

void PutBack(VARIANT* variable, const Variant& value) {
    if (!Missing(variable)) Store(*variable, value);
}

SAFEARRAY* NewArray(const std::vector<std::string>& texts) {
    ArrayPtr array = NewVector(VT_BSTR, texts.size());
    const ArrayData data(array.get());
    for (std::size_t i = 0; i < texts.size(); ++i)
        data.As<BSTR>()[i] = NewBSTR(texts[i]);
    return array.release();
}

Variant ScriptArray(const SAFEARRAY* texts) {
    SAFEARRAY* source = const_cast<SAFEARRAY*>(texts);
    const std::size_t count = CountOf(source);
    ArrayPtr array = NewVector(VT_VARIANT, count);
    {
        const ArrayData from(source);
        const ArrayData to(array.get());
        for (std::size_t i = 0; i < count; ++i)
            to.As<VARIANT>()[i] = VariantOf(TextOf(from.As<BSTR>()[i])).Detach();
    }
    Variant value;
    value.vt = VT_ARRAY | VT_VARIANT;
    value.parray = array.release();
    return value;
}

std::string BytesOf(const VARIANT& argument) {
    const Variant value = Resolve(argument);
    if (value.vt == VT_BSTR) {  // each character is a byte pair, as a script's own byte strings are
        return {reinterpret_cast<const char*>(value.bstrVal), SysStringByteLen(value.bstrVal)};
    }
    if (value.vt != (VT_ARRAY | VT_UI1) || !value.parray) RaiseConversion(DISP_E_TYPEMISMATCH);
    const ArrayData data(value.parray);
    return {data.As<const char>(), CountOf(value.parray)};
}

Variant VariantOfBytes(std::string_view bytes) {
    ArrayPtr array = NewVector(VT_UI1, bytes.size());
    if (!bytes.empty()) std::memcpy(ArrayData(array.get()).As<char>(), bytes.data(), bytes.size());
    Variant value;
    value.vt = VT_ARRAY | VT_UI1;
    value.parray = array.release();
    return value;
}

std::vector<std::string> ListOf(const VARIANT& argument) {
    const Variant value = Resolve(argument);
    if ((value.vt & VT_ARRAY) && value.parray) return ElementsOf(value.parray);
    const auto object = ObjectOr(&value);
    if (!object) RaiseConversion(DISP_E_TYPEMISMATCH);
    const auto enumerator = EnumeratorOf(*object.Get());
    if (!enumerator) return ElementsOfScriptArray(object);
    std::vector<std::string> texts;
    for (;;) {
        Variant element;
        ULONG fetched = 0;
        Check(enumerator->Next(1, &element, &fetched));
        if (fetched == 0) return texts;
        texts.push_back(TextOf(Changed(element, VT_BSTR).bstrVal));
    }
}

}  // namespace kq::automation
