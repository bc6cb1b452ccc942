// What the bus needs of a machine, asked for where an object is made: what is missing is an error there, not
// a crash later.
#pragma once

#include <utility>

#include <kqappsession/Error.h>
#include <kqappsession/Platform.h>

namespace kq {

// Returns the platform. Raises RuntimeError::InvalidProcedureCall when it is null or lacks its event loop or
// its crypto functions.
inline PlatformPtr RequirePlatform(PlatformPtr platform) {
    if (platform == nullptr) {
        Raise(RuntimeError::InvalidProcedureCall, "The bus needs a platform, such as that of MakePlatform");
    }
    if (platform->loop == nullptr || platform->crypto == nullptr) {
        Raise(RuntimeError::InvalidProcedureCall,
              "The bus needs a platform with an event loop and crypto functions");
    }
    return platform;
}

// The same, and a network besides.
inline PlatformPtr RequireNetwork(PlatformPtr platform) {
    auto required = RequirePlatform(std::move(platform));
    if (required->network == nullptr || required->resolver == nullptr) {
        Raise(RuntimeError::InvalidProcedureCall, "The bus needs a platform with a network and a resolver");
    }
    return required;
}

}  // namespace kq
