// The type libraries inside this DLL, read from the DLL itself, so that nothing needs to be registered.
#pragma once

#include <oaidl.h>
#include <string>

#include "automation/Coclasses.h"
#include "automation/Ptr.h"

namespace kq::automation {

// The resources 1, 2, 3 ... of the DLL.
#define KQ_X(number, library) +1
inline constexpr int kTypeLibraries = KQ_TYPE_LIBRARIES(KQ_X);
#undef KQ_X

// The path by which the system finds library `number`.
std::wstring TypeLibraryPath(int number);
Ptr<ITypeLib> LoadTypeLibrary(int number);

// Loads all of them and keeps them until ForgetTypeLibraries. Some systems find what one library imports from
// another only while both are loaded, and proxies for other threads are made from such descriptions.
void KeepTypeLibraries();
// The description of an interface or coclass of any of the libraries, null when there is none. Kept until
// ForgetTypeLibraries.
Ptr<ITypeInfo> TypeInfoOf(REFGUID id);
void ForgetTypeLibraries() noexcept;

}  // namespace kq::automation
