#include <utility>

#include <kqappsession/Platform.h>

#include "platform/Machine.h"

namespace kq {

Platform::Platform(std::unique_ptr<const Machine> machine) : machine_(std::move(machine)) {}

Platform::~Platform() = default;

const std::shared_ptr<EventLoop>& Platform::Loop() const {
    return machine_->loop;
}

bool Platform::Interactive() const {
    return machine_->dialogs != nullptr;
}

}  // namespace kq
