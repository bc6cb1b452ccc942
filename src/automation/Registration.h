// Enters the classes and type libraries of this DLL into the registry, and takes them out again.
#pragma once

#include <windows.h>

namespace kq::automation {

enum class Scope { Machine, User };

// All or nothing: what was entered is taken out again when a step fails.
HRESULT Register(Scope scope) noexcept;
// Leaves nothing behind; a ProgID that names another class stays.
HRESULT Unregister(Scope scope) noexcept;

}  // namespace kq::automation
