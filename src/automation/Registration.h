// Enters the classes and type libraries of this DLL into the registry, and takes them out again.
#pragma once

#include <windows.h>

namespace kq::automation {

enum class Scope { Machine, User };

// All or nothing: when a step fails, everything is taken out, an earlier registration too.
HRESULT Register(Scope scope) noexcept;
// Leaves nothing behind; a ProgID that names another class stays. The first failure, after all steps.
HRESULT Unregister(Scope scope) noexcept;

}  // namespace kq::automation
