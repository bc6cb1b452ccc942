// Type libraries as text that people can compare: every type with its members, their slots, ids and
// parameters.
#pragma once

#include <oaidl.h>
#include <string>
#include <vector>

#include "automation/Ptr.h"

namespace kq {

// The type libraries of a DLL in the order of their numbers. While all of them are loaded, what one imports
// from another has its name.
std::vector<automation::Ptr<ITypeLib>> TypeLibrariesOf(const std::wstring& dll);

std::string TypeLibraryText(ITypeLib& library);

}  // namespace kq
