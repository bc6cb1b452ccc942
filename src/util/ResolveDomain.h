// From a host name to the dotted text of its first IPv4 address.
#pragma once

#include <string>

#include <kqappsession/Platform.h>

namespace kq {

class ResolveDomain {
 public:
    explicit ResolveDomain(PlatformPtr platform) : platform_(std::move(platform)) {}
    // Empty on any failure; never raises.
    std::string IPFromDomain(const std::string& domain_name) const;

 private:
    PlatformPtr platform_;
};

}  // namespace kq
