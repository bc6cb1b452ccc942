// One question to the platform's resolver; the first IPv4 address in its order is the answer.
#include "util/ResolveDomain.h"

#include "platform/Machine.h"
#include "platform/Resolver.h"

namespace kq {

std::string ResolveDomain::IPFromDomain(const std::string& domain_name) const {
    return platform_->Parts().resolver->FirstIPv4(domain_name);
}

}  // namespace kq
