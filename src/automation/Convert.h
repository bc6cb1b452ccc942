// Texts, numbers, objects and arrays on their way between the core (UTF-8, standard types) and automation
// (BSTR, VARIANT, SAFEARRAY). A null BSTR is an empty text. What cannot be converted raises TypeMismatch or
// Overflow.
#pragma once

#include <cstdint>
#include <memory>
#include <oaidl.h>
#include <oleauto.h>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/Secret.h>

#include "automation/Guard.h"
#include "automation/Ptr.h"

namespace kq::automation {

// A VARIANT that clears itself.
class Variant : public VARIANT {
 public:
    Variant() noexcept : VARIANT{} {}  // all of it, which VariantInit leaves to chance
    Variant(const Variant& other) : Variant(static_cast<const VARIANT&>(other)) {}
    explicit Variant(const VARIANT& other) : Variant() {
        Check(VariantCopy(this, const_cast<VARIANT*>(&other)));
    }
    Variant(Variant&& other) noexcept : VARIANT(other) { static_cast<VARIANT&>(other) = VARIANT{}; }
    Variant& operator=(Variant other) noexcept {
        std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
        return *this;
    }
    ~Variant() { VariantClear(this); }
    // For an out parameter.
    VARIANT Detach() noexcept {
        const VARIANT value = *this;
        VariantInit(this);
        return value;
    }
};

std::string TextOf(std::wstring_view text);
std::wstring WideOf(std::string_view text);
std::string TextOf(BSTR text);
BSTR NewBSTR(std::string_view text);

inline VARIANT_BOOL BooleanOf(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

// One value as a VARIANT; an object as VT_DISPATCH.
inline Variant VariantOf(Variant value) {
    return value;
}
Variant VariantOf(std::string_view text);
Variant VariantOf(const std::string& text);
Variant VariantOf(const char* text);
Variant VariantOf(std::int32_t number);
Variant VariantOf(long number);
Variant VariantOf(double number);
Variant VariantOf(bool value);
Variant VariantOf(Ptr<IDispatch> object);
template <class T>
Variant VariantOf(const Ptr<T>& object) {
    return VariantOf(Ptr<IDispatch>(object.Get()));
}
// A variable of the caller: what the callee writes is seen there.
Variant ByReference(long& number);
Variant ByReference(VARIANT_BOOL& value);
Variant ByReference(BSTR& text);
Variant ByReference(IDispatch*& object);

// The value without references to variables. A copy.
Variant Resolve(const VARIANT& value);
// Converted as the automation run time does; TypeMismatch or Overflow.
Variant Changed(const VARIANT& value, VARTYPE type, LCID locale = LOCALE_USER_DEFAULT);

// An optional argument: left out when the pointer is null or the value says so.
bool Missing(const VARIANT* argument);
std::string TextOr(const VARIANT* argument, std::string_view otherwise = {});
std::int32_t LongOr(const VARIANT* argument, std::int32_t otherwise = 0);
bool BooleanOr(const VARIANT* argument, bool otherwise = false);
// The text leaves no copy behind.
Secret SecretOr(const VARIANT* argument);
// Null for Nothing, Null, Empty and left out; TypeMismatch for what is no object.
Ptr<IDispatch> ObjectOr(const VARIANT* argument);
// The same for an icon, which must be a picture.
void CheckPicture(const VARIANT* argument);

// A result written into a variable that was passed, when there is one.
void PutBack(VARIANT* variable, const Variant& value);
// Stores into the variable behind a reference, or replaces the value.
void Store(VARIANT& target, const VARIANT& value);

SAFEARRAY* NewArray(const std::vector<std::string>& texts);
// The same with each element in a VARIANT, which is what script engines can read.
Variant ScriptArray(const SAFEARRAY* array);
std::string BytesOf(const VARIANT& value);
Variant VariantOfBytes(std::string_view bytes);

// The elements of an array, of an object with an enumerator or of a script's own array (an object with a
// length), as texts. TypeMismatch for anything else.
std::vector<std::string> ListOf(const VARIANT& value);

// An index: a text is a name, a number a position. Calls the one function or the other.
template <class ByName, class ByPosition>
auto AtIndex(const VARIANT& index, ByName&& by_name, ByPosition&& by_position) {
    const Variant value = Resolve(index);
    if (value.vt == VT_BSTR) return by_name(TextOf(value.bstrVal));
    return by_position(static_cast<std::int32_t>(Changed(value, VT_I4).lVal));
}

// Results into out parameters.
inline void Put(BSTR* out, std::string_view value) {
    *out = NewBSTR(value);
}
inline void Put(VARIANT_BOOL* out, bool value) {
    *out = BooleanOf(value);
}
inline void Put(long* out, std::int32_t value) {
    *out = value;
}
inline void Put(double* out, double value) {
    *out = value;
}
inline void Put(VARIANT* out, Variant value) {
    *out = value.Detach();
}
inline void Put(SAFEARRAY** out, const std::vector<std::string>& value) {
    *out = NewArray(value);
}
template <class T, class U>
void Put(T** out, Ptr<U> value) {
    *out = value.Detach();
}
template <class Enum>
requires std::is_enum_v<Enum>
void Put(Enum* out, auto value) {
    *out = static_cast<Enum>(value);
}

}  // namespace kq::automation
