#include "automation/TestBus.h"

#include "libs/xmlbus/Hub.h"

namespace kq {

TestBus::TestBus() : hub_(std::make_unique<Hub>(MakePlatform())) {
    hub_->Listen("127.0.0.1", 0, "");
}

TestBus::~TestBus() = default;

long TestBus::Port() const {
    return hub_->Port();
}

}  // namespace kq
