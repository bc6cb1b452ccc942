#include "automation/TypeLibraryText.h"

#include <comdef.h>
#include <sstream>
#include <vector>

#include "automation/Ptr.h"
#include "automation/WideText.h"

namespace kq {
namespace {

using automation::Ptr;

std::string Text(REFGUID id) {
    wchar_t text[40];
    StringFromGUID2(id, text, 40);
    return Narrow(text);
}

struct Documentation {
    explicit Documentation(ITypeInfo& info, MEMBERID id = MEMBERID_NIL) {
        BSTR name_text = nullptr;
        BSTR help_text = nullptr;
        info.GetDocumentation(id, &name_text, &help_text, nullptr, nullptr);
        name = Narrow(name_text);
        if (help_text) help = " \"" + Narrow(help_text) + "\"";
        SysFreeString(name_text);
        SysFreeString(help_text);
    }
    std::string name;
    std::string help;
};

std::string NameOfReference(ITypeInfo& info, HREFTYPE reference) {
    Ptr<ITypeInfo> target;
    if (FAILED(info.GetRefTypeInfo(reference, target.Out()))) return "?";
    return Documentation(*target.Get()).name;
}

std::string TypeName(ITypeInfo& info, const TYPEDESC& type) {
    switch (type.vt) {
        case VT_PTR:
            return TypeName(info, *type.lptdesc) + "*";
        case VT_SAFEARRAY:
            return "SAFEARRAY(" + TypeName(info, *type.lptdesc) + ")";
        case VT_USERDEFINED:
            return NameOfReference(info, type.hreftype);
        case VT_BSTR:
            return "BSTR";
        case VT_I4:
            return "long";
        case VT_R8:
            return "double";
        case VT_BOOL:
            return "VARIANT_BOOL";
        case VT_VARIANT:
            return "VARIANT";
        case VT_DISPATCH:
            return "IDispatch*";
        case VT_UNKNOWN:
            return "IUnknown*";
        case VT_HRESULT:
            return "HRESULT";
        case VT_VOID:
            return "void";
        default:
            return "VT" + std::to_string(type.vt);
    }
}

std::string DefaultText(const VARIANT& value) {
    _variant_t text;
    if (FAILED(VariantChangeType(&text, const_cast<VARIANT*>(&value), VARIANT_ALPHABOOL, VT_BSTR)))
        return "?";
    return "=\"" + Narrow(text.bstrVal) + "\"";
}

std::string ParameterText(ITypeInfo& info, const ELEMDESC& parameter, const std::string& name) {
    const USHORT flags = parameter.paramdesc.wParamFlags;
    std::string text = "[";
    const auto add = [&](USHORT flag, const char* word) {
        if (flags & flag) text += (text.size() > 1 ? " " : "") + std::string(word);
    };
    add(PARAMFLAG_FIN, "in");
    add(PARAMFLAG_FOUT, "out");
    add(PARAMFLAG_FOPT, "optional");
    add(PARAMFLAG_FRETVAL, "retval");
    text += "] " + TypeName(info, parameter.tdesc) + " " + name;
    if (flags & PARAMFLAG_FHASDEFAULT) text += DefaultText(parameter.paramdesc.pparamdescex->varDefaultValue);
    return text;
}

const char* KindName(INVOKEKIND kind) {
    switch (kind) {
        case INVOKE_PROPERTYGET:
            return "get";
        case INVOKE_PROPERTYPUT:
            return "let";
        case INVOKE_PROPERTYPUTREF:
            return "set";
        default:
            return "call";
    }
}

void WriteFunction(std::ostream& out, ITypeInfo& info, UINT index) {
    FUNCDESC* function = nullptr;
    if (FAILED(info.GetFuncDesc(index, &function))) {
        out << "    function " << index << " cannot be described\n";
        return;
    }
    std::vector<BSTR> names(static_cast<std::size_t>(function->cParams) + 1);
    UINT count = 0;
    info.GetNames(function->memid, names.data(), static_cast<UINT>(names.size()), &count);
    out << "    " << KindName(function->invkind) << ' ' << Narrow(names[0]) << " id=" << function->memid;
    if (function->funckind == FUNC_PUREVIRTUAL)
        out << " slot=" << function->oVft / static_cast<SHORT>(sizeof(void*));
    if (function->wFuncFlags) out << " flags=" << function->wFuncFlags;
    out << " (";
    for (SHORT i = 0; i < function->cParams; ++i) {
        const std::size_t place = static_cast<std::size_t>(i) + 1;
        const bool set = function->invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF);
        const bool named = place < count && !(set && i + 1 == function->cParams);  // what is set has no name
        out << (i ? ", " : "")
            << ParameterText(info, function->lprgelemdescParam[i], named ? Narrow(names[place]) : "value");
    }
    out << ") " << TypeName(info, function->elemdescFunc.tdesc) << Documentation(info, function->memid).help
        << '\n';
    for (BSTR name : names)
        SysFreeString(name);
    info.ReleaseFuncDesc(function);
}

void WriteValue(std::ostream& out, ITypeInfo& info, UINT index) {
    VARDESC* variable = nullptr;
    if (FAILED(info.GetVarDesc(index, &variable))) return;
    out << "    " << Documentation(info, variable->memid).name << " = " << variable->lpvarValue->lVal << '\n';
    info.ReleaseVarDesc(variable);
}

void WriteImplemented(std::ostream& out, ITypeInfo& info, UINT index) {
    HREFTYPE reference = 0;
    INT flags = 0;
    if (FAILED(info.GetRefTypeOfImplType(index, &reference))) return;
    info.GetImplTypeFlags(index, &flags);
    out << "    " << (flags & IMPLTYPEFLAG_FDEFAULT ? "default " : "")
        << (flags & IMPLTYPEFLAG_FSOURCE ? "source " : "") << NameOfReference(info, reference) << '\n';
}

const char* TypeKindName(TYPEKIND kind) {
    switch (kind) {
        case TKIND_ENUM:
            return "enum";
        case TKIND_INTERFACE:
            return "interface";
        case TKIND_DISPATCH:
            return "dispinterface";
        case TKIND_COCLASS:
            return "coclass";
        default:
            return "type";
    }
}

// A dual interface is shown by its table of slots.
Ptr<ITypeInfo> FaceOf(ITypeInfo& info, const TYPEATTR& attributes) {
    HREFTYPE reference = 0;
    Ptr<ITypeInfo> slots;
    if (attributes.typekind == TKIND_DISPATCH && (attributes.wTypeFlags & TYPEFLAG_FDUAL) &&
        SUCCEEDED(info.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) &&
        SUCCEEDED(info.GetRefTypeInfo(reference, slots.Out()))) {
        return slots;
    }
    return Ptr<ITypeInfo>(&info);
}

void WriteType(std::ostream& out, ITypeInfo& described) {
    TYPEATTR* outer = nullptr;
    described.GetTypeAttr(&outer);
    const auto info = FaceOf(described, *outer);
    const WORD flags = outer->wTypeFlags;
    described.ReleaseTypeAttr(outer);
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    const Documentation words(*info.Get());
    out << "  " << TypeKindName(attributes->typekind) << ' ' << words.name << ' ' << Text(attributes->guid)
        << " flags=" << flags << words.help << '\n';
    for (UINT i = 0; i < attributes->cVars; ++i)
        WriteValue(out, *info.Get(), i);
    for (UINT i = 0; i < attributes->cFuncs; ++i)
        WriteFunction(out, *info.Get(), i);
    if (attributes->typekind == TKIND_COCLASS) {
        for (UINT i = 0; i < attributes->cImplTypes; ++i)
            WriteImplemented(out, *info.Get(), i);
    }
    info->ReleaseTypeAttr(attributes);
}

}  // namespace

std::vector<Ptr<ITypeLib>> TypeLibrariesOf(const std::wstring& dll) {
    std::vector<Ptr<ITypeLib>> libraries;
    for (;;) {
        const std::wstring path = dll + L"\\" + std::to_wstring(libraries.size() + 1);
        Ptr<ITypeLib> library;
        if (FAILED(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Out()))) return libraries;
        libraries.push_back(library);
    }
}

std::string TypeLibraryText(ITypeLib& library) {
    std::ostringstream out;
    TLIBATTR* attributes = nullptr;
    BSTR name = nullptr;
    BSTR help = nullptr;
    library.GetLibAttr(&attributes);
    library.GetDocumentation(-1, &name, &help, nullptr, nullptr);
    out << "library " << Narrow(name) << ' ' << Text(attributes->guid) << ' ' << attributes->wMajorVerNum
        << '.' << attributes->wMinorVerNum << " \"" << Narrow(help) << "\"\n";
    SysFreeString(name);
    SysFreeString(help);
    library.ReleaseTLibAttr(attributes);
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
        Ptr<ITypeInfo> info;
        if (SUCCEEDED(library.GetTypeInfo(i, info.Out()))) WriteType(out, *info.Get());
    }
    return out.str();
}

}  // namespace kq
