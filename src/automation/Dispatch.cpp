#include "automation/Dispatch.h"

#include <cstring>
#include <optional>
#include <vector>

#include <kqappsession/Error.h>

#include "automation/Convert.h"
#include "automation/TypeLibraries.h"

namespace kq::automation {
namespace {

// What a parameter takes.
struct Type {
    VARTYPE type = VT_EMPTY;
    bool by_reference = false;
    std::optional<GUID> object;  // the interface of an object, when it is known
};

Type TypeOfReference(ITypeInfo* info, HREFTYPE reference) {
    Ptr<ITypeInfo> target;
    // A library that it refers to may be registered nowhere: the object is then taken as it comes.
    if (FAILED(info->GetRefTypeInfo(reference, target.Out()))) return {VT_DISPATCH, false, std::nullopt};
    TYPEATTR* attributes = nullptr;
    Check(target->GetTypeAttr(&attributes));
    Type type;
    if (attributes->typekind == TKIND_ENUM) {
        type.type = VT_I4;
    } else {
        type.type = VT_DISPATCH;
        type.object = attributes->guid;
        if (attributes->guid == IID_IUnknown) type.type = VT_UNKNOWN;
    }
    target->ReleaseTypeAttr(attributes);
    return type;
}

Type TypeOf(ITypeInfo* info, const TYPEDESC& description) {
    switch (description.vt) {
        case VT_USERDEFINED:
            return TypeOfReference(info, description.hreftype);
        case VT_SAFEARRAY:
            return {static_cast<VARTYPE>(VT_ARRAY | description.lptdesc->vt), false, std::nullopt};
        case VT_PTR: {
            // A pointer to an object is the object; to anything else it is a reference.
            const TYPEDESC& target = *description.lptdesc;
            Type type = TypeOf(info, target);
            const bool object = type.type == VT_DISPATCH || type.type == VT_UNKNOWN;
            if (!object || target.vt != VT_USERDEFINED) type.by_reference = true;
            return type;
        }
        default:
            return {description.vt, false, std::nullopt};
    }
}

Variant ObjectArgument(const VARIANT& argument, const Type& type) {
    const Ptr<IDispatch> object = ObjectOr(&argument);
    Variant value;
    value.vt = type.type;
    if (object && FAILED(object->QueryInterface(type.object.value_or(IID_IDispatch),
                                                reinterpret_cast<void**>(&value.punkVal)))) {
        Raise(RuntimeError::TypeMismatch);
    }
    return value;
}

// The argument as a value of the declared type.
Variant Argument(const VARIANT& argument, const Type& type, LCID locale) {
    if (type.type == VT_DISPATCH || type.type == VT_UNKNOWN) return ObjectArgument(argument, type);
    if (type.type == VT_VARIANT) return Resolve(argument);
    return Changed(argument, type.type, locale);
}

Variant Absent(const Type& type) {
    Variant value;
    if (type.type == VT_VARIANT) {
        value.vt = VT_ERROR;
        value.scode = DISP_E_PARAMNOTFOUND;
    } else {
        value.vt = type.type;
        value.llVal = 0;
    }
    return value;
}

// Whether a member left an argument as it was. Of what members write, that is: a value of another type that
// has kept its type was not touched.
bool SameValue(const VARIANT& a, const VARIANT& b) {
    if (a.vt != b.vt) return false;
    switch (a.vt) {
        case VT_BSTR: {
            const UINT size = SysStringByteLen(a.bstrVal);
            return size == SysStringByteLen(b.bstrVal) &&
                   (size == 0 || std::memcmp(a.bstrVal, b.bstrVal, size) == 0);
        }
        case VT_I4:
            return a.lVal == b.lVal;
        case VT_BOOL:
        case VT_I2:
            return a.iVal == b.iVal;
        case VT_R8:
            return a.dblVal == b.dblVal;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return a.punkVal == b.punkVal;
        default:
            return true;
    }
}

// A member as the type library describes it in the table of slots.
class Member {
 public:
    Member(REFIID interface_id, DISPID id, WORD flags) {
        const auto dispatch = TypeInfoOf(interface_id);
        if (!dispatch) throw Failure(TYPE_E_ELEMENTNOTFOUND);
        HREFTYPE reference = 0;
        Check(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
        Check(dispatch->GetRefTypeInfo(reference, info_.Out()));
        Check(info_->GetFuncDesc(IndexOf(id, flags), &description_));
    }
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;
    ~Member() { info_->ReleaseFuncDesc(description_); }

    bool IsRead() const { return description_->invkind == INVOKE_PROPERTYGET; }
    UINT Count() const { return static_cast<UINT>(description_->cParams); }
    bool HasResult() const { return Count() > 0 && (FlagsOf(Count() - 1) & PARAMFLAG_FRETVAL); }
    UINT Inputs() const { return HasResult() ? Count() - 1 : Count(); }
    USHORT FlagsOf(UINT index) const { return Parameter(index).paramdesc.wParamFlags; }
    const VARIANT& DefaultOf(UINT index) const {
        return Parameter(index).paramdesc.pparamdescex->varDefaultValue;
    }
    Type TypeOfParameter(UINT index) const { return TypeOf(info_.Get(), Parameter(index).tdesc); }
    const FUNCDESC& Description() const { return *description_; }

 private:
    const ELEMDESC& Parameter(UINT index) const { return description_->lprgelemdescParam[index]; }

    // Hosts ask in many ways: for a method or a property, for setting an object or a value. The exact kind
    // counts first; a call may also read a property, and either way of setting does for the other.
    UINT IndexOf(DISPID id, WORD flags) const {
        std::vector<INVOKEKIND> kinds;
        const auto add = [&](WORD flag, INVOKEKIND kind) {
            if (flags & flag) kinds.push_back(kind);
        };
        add(DISPATCH_PROPERTYPUTREF, INVOKE_PROPERTYPUTREF);
        add(DISPATCH_PROPERTYPUT, INVOKE_PROPERTYPUT);
        add(DISPATCH_PROPERTYPUT, INVOKE_PROPERTYPUTREF);
        add(DISPATCH_PROPERTYPUTREF, INVOKE_PROPERTYPUT);
        add(DISPATCH_PROPERTYGET, INVOKE_PROPERTYGET);
        add(DISPATCH_METHOD, INVOKE_FUNC);
        add(DISPATCH_METHOD, INVOKE_PROPERTYGET);
        for (const INVOKEKIND kind : kinds) {
            UINT index = 0;
            Ptr<ITypeInfo2> info = info_.As<ITypeInfo2>();
            if (info && SUCCEEDED(info->GetFuncIndexOfMemId(id, kind, &index))) return index;
        }
        throw Failure(DISP_E_MEMBERNOTFOUND);
    }

    Ptr<ITypeInfo> info_;
    FUNCDESC* description_ = nullptr;
};

// Values of arguments. A password among them leaves no copy behind.
class Values : public std::vector<Variant> {
 public:
    using std::vector<Variant>::vector;
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;
    ~Values() {
        for (Variant& value : *this) {
            if (value.vt == VT_BSTR && value.bstrVal)
                WipeMemory(value.bstrVal, SysStringByteLen(value.bstrVal));
        }
    }
};

// One call of a member: its arguments as values of the declared types.
class Call {
 public:
    Call(const Member& member, DISPPARAMS& arguments, LCID locale, UINT* wrong_argument)
        : member_(member),
          arguments_(arguments),
          given_(member.Count()),
          types_(member.Count()),
          values_(member.Count()),
          before_(member.Count()) {
        PlaceArguments();
        for (UINT i = 0; i < member_.Count(); ++i)
            Take(i, locale, wrong_argument);
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // The result that the member itself returned.
    HRESULT Run(IDispatch* self) {
        const UINT count = member_.Count();
        std::vector<VARTYPE> types(count);
        std::vector<VARIANT> references(count);
        std::vector<VARIANT*> pointers(count);
        for (UINT i = 0; i < count; ++i) {
            const Type& type = types_[i];
            types[i] = type.by_reference ? static_cast<VARTYPE>(type.type | VT_BYREF) : type.type;
            references[i].vt = types[i];
            references[i].byref = type.type == VT_VARIANT ? static_cast<void*>(&values_[i])
                                                          : static_cast<void*>(&values_[i].byref);
            pointers[i] = type.by_reference ? &references[i] : &values_[i];
        }
        Variant returned;
        const FUNCDESC& description = member_.Description();
        Check(DispCallFunc(self, static_cast<ULONG_PTR>(description.oVft), description.callconv, VT_ERROR,
                           count, types.data(), pointers.data(), &returned));
        return returned.scode;
    }

    void WriteBack() {
        for (UINT i = 0; i < member_.Inputs(); ++i) {
            if (!given_[i] || !types_[i].by_reference || SameValue(values_[i], before_[i])) continue;
            if (given_[i]->vt & VT_BYREF) Store(*given_[i], values_[i]);
        }
    }

    Variant TakeResult() {
        if (!member_.HasResult()) return {};
        Variant value = std::move(values_.back());
        if (value.vt == (VT_ARRAY | VT_BSTR)) return ScriptArray(value.parray);
        return value;
    }

 private:
    void PlaceArguments() {
        const UINT named = arguments_.cNamedArgs;
        if (arguments_.cArgs > member_.Inputs()) throw Failure(DISP_E_BADPARAMCOUNT);
        for (UINT i = 0; i < arguments_.cArgs; ++i) {
            UINT place = arguments_.cArgs - 1 - i;
            if (i < named) {
                const DISPID name = arguments_.rgdispidNamedArgs[i];
                place = name == DISPID_PROPERTYPUT ? member_.Inputs() - 1 : static_cast<UINT>(name);
            }
            if (place >= member_.Inputs()) throw Failure(DISP_E_PARAMNOTFOUND);
            if (!Missing(&arguments_.rgvarg[i])) given_[place] = &arguments_.rgvarg[i];
        }
    }

    void Take(UINT i, LCID locale, UINT* wrong_argument) {
        const Type& type = types_[i] = member_.TypeOfParameter(i);
        const bool input = i < member_.Inputs();
        if (given_[i]) {
            if (wrong_argument) *wrong_argument = static_cast<UINT>(given_[i] - arguments_.rgvarg);
            values_[i] = Argument(*given_[i], type, locale);
            before_[i] = values_[i];
        } else if (member_.FlagsOf(i) & PARAMFLAG_FHASDEFAULT) {
            values_[i] = Argument(member_.DefaultOf(i), type, locale);
        } else if (input && !(member_.FlagsOf(i) & PARAMFLAG_FOPT)) {
            throw Failure(DISP_E_PARAMNOTOPTIONAL);
        } else if (input) {
            values_[i] = Absent(type);
        } else if (type.type != VT_VARIANT) {
            values_[i].vt = type.type;
            values_[i].llVal = 0;
        }
    }

    const Member& member_;
    DISPPARAMS& arguments_;
    std::vector<VARIANT*> given_;  // by place; null: left out
    std::vector<Type> types_;
    Values values_;
    Values before_;
};

// What the member raised, as the caller of Invoke sees it.
HRESULT FillException(HRESULT code, EXCEPINFO* exception) {
    if (!exception) return DISP_E_EXCEPTION;
    *exception = {};
    exception->scode = code;
    Ptr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) == S_OK) {
        info->GetSource(&exception->bstrSource);
        info->GetDescription(&exception->bstrDescription);
    }
    return DISP_E_EXCEPTION;
}

// Arguments of a property that takes none belong to what it returns: an element of an array, or the default
// member of an object. Returns the default member's own result.
HRESULT ElementOf(const Variant& value, DISPPARAMS& arguments, Variant& element, EXCEPINFO* exception) {
    if (value.vt == (VT_ARRAY | VT_VARIANT)) {
        if (arguments.cArgs != 1) throw Failure(DISP_E_BADPARAMCOUNT);
        LONG index = Changed(arguments.rgvarg[0], VT_I4).lVal;
        Check(SafeArrayGetElement(value.parray, &index, &element));
        return S_OK;
    }
    if (value.vt != VT_DISPATCH || !value.pdispVal) throw Failure(DISP_E_BADPARAMCOUNT);
    return value.pdispVal->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT,
                                  DISPATCH_METHOD | DISPATCH_PROPERTYGET, &arguments, &element, exception,
                                  nullptr);
}

// A failure of the dispatch itself is its plain result, without error object, so that the host's run time
// words it.
template <class F>
HRESULT Plain(F&& body) noexcept {
    const HRESULT result = Guard(IID_IDispatch, body);
    ForgetError();
    return result;
}

// A call up to the member and back. An argument that cannot be converted is an error of this library like the
// member's own; other failures of the dispatch are its plain result.
template <class F>
HRESULT Calling(EXCEPINFO* exception, F&& body) noexcept {
    const HRESULT result = Guard(IID_IDispatch, body);
    const bool run_time_error = FAILED(result) && HRESULT_FACILITY(result) == FACILITY_CONTROL;
    return run_time_error ? FillException(result, exception) : Plain([&] { Check(result); });
}

}  // namespace

HRESULT IdsOfNames(REFIID interface_id, LPOLESTR* names, UINT count, DISPID* ids) noexcept {
    return Plain([&] {
        const auto info = TypeInfoOf(interface_id);
        if (!info) throw Failure(TYPE_E_ELEMENTNOTFOUND);
        Check(info->GetIDsOfNames(names, count, ids));
    });
}

HRESULT Invoke(REFIID interface_id, IDispatch* self, DISPID id, LCID locale, WORD flags,
               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) noexcept {
    const Ptr<IDispatch> keep(self);  // a member may run the host's code, which may drop the object
    HRESULT outcome = S_OK;
    const HRESULT failed = Calling(exception, [&] {
        DISPPARAMS& given = Given(arguments);
        const Member member(interface_id, id, flags);
        DISPPARAMS none{};
        const bool for_result = member.IsRead() && member.Inputs() == 0 && given.cArgs > 0;
        Call call(member, for_result ? none : given, locale, wrong_argument);
        const HRESULT raised = call.Run(self);
        if (FAILED(raised)) {
            outcome = FillException(raised, exception);
            Plain([&] { call.WriteBack(); });  // what the member raised counts, not a variable too small
            return;
        }
        call.WriteBack();
        Variant value = call.TakeResult();
        if (for_result) {
            Variant element;
            outcome = ElementOf(value, given, element, exception);
            value = element;
        }
        if (result) *result = value.Detach();
    });
    return FAILED(failed) ? failed : outcome;
}

}  // namespace kq::automation
