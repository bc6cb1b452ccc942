// The first IPv4 address that the platform's resolver returns.
#include "util/ResolveDomain.h"

#include "platform/Machine.h"
#include "platform/Resolver.h"

namespace kq {

std::string ResolveDomain::IPFromDomain(const std::string& domain_name) const {
    return platform_->Parts().resolver->FirstIPv4(domain_name);
}

}  // namespace kq
