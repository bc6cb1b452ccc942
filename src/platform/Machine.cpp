// Apart from the members of Platform, which only the main library holds.
#include "platform/Machine.h"

#include <string>
#include <utility>

#include <kqappsession/Error.h>

namespace kq {

PlatformPtr MakeBundle(Platform::Machine machine) {
    return std::make_shared<const Platform>(std::make_unique<const Platform::Machine>(std::move(machine)));
}

PlatformPtr RequirePlatform(PlatformPtr platform, std::string_view whose) {
    if (!platform) {
        Raise(RuntimeError::ObjectNotSet,
              std::string(whose) + " needs a platform, such as that of MakePlatform");
    }
    return platform;
}

}  // namespace kq
