// One question to the resolver for each name, whose answer goes to everybody who waits for it.
#include "zeb/HostNames.h"

#include "platform/Resolver.h"

namespace kq::zeb {

bool HostNames::Find(const std::string& host, std::function<void(const Addresses&)> then) {
    if (requests_ >= rule_.requests) return false;
    const auto known = waiting_.find(host);
    if (known == waiting_.end() && waiting_.size() >= rule_.names) return false;
    ++requests_;
    if (known != waiting_.end()) {
        known->second.push_back(std::move(then));
        return true;
    }
    waiting_[host].push_back(std::move(then));
    platform_->resolver->Resolve(host, owner_, [this, host](const Addresses& found) { Answer(host, found); });
    return true;
}

void HostNames::Answer(const std::string& host, const Addresses& found) {
    const auto answered = waiting_.extract(host);
    requests_ -= answered.mapped().size();
    for (const auto& then : answered.mapped())
        then(found);
}

}  // namespace kq::zeb
