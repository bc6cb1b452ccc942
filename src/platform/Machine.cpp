#include "platform/Machine.h"

#include <string>
#include <utility>

#include <kqappsession/Error.h>

namespace kq {

Platform::Platform(std::unique_ptr<const Machine> machine) : machine_(std::move(machine)) {}

Platform::~Platform() = default;

const std::shared_ptr<EventLoop>& Platform::Loop() const {
    return machine_->loop;
}

bool Platform::Interactive() const {
    return machine_->dialogs != nullptr;
}

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
