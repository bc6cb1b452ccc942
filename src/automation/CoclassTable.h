// The list of classes as a table at run time.
#pragma once

#include <span>
#include <string>
#include <windows.h>

#include "automation/Ptr.h"

namespace kq::automation {

struct CoclassEntry {
    CLSID id;
    const wchar_t* library;  // the first part of the ProgID
    const wchar_t* name;     // the second part
    int type_library;        // its resource number
    Ptr<IUnknown> (*make)();

    // "Library.Class": always the newest version; "Library.Class.1": this one.
    std::wstring PlainProgId() const { return std::wstring(library) + L"." + name; }
    std::wstring ProgId() const { return PlainProgId() + L".1"; }
};

std::span<const CoclassEntry> Coclasses();

}  // namespace kq::automation
