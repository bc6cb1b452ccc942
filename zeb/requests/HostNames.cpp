// One query to the resolver for each name; its answer is given to all requests that wait for it.
#include "zeb/requests/HostNames.h"

#include "platform/Machine.h"
#include "platform/Resolver.h"

namespace kq::zeb {
namespace {

std::size_t CountOf(const std::map<std::string, std::size_t>& counts, const std::string& key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

void OneLess(std::map<std::string, std::size_t>& counts, const std::string& key) {
    const auto found = counts.find(key);
    if (--found->second == 0) counts.erase(found);
}

}  // namespace

bool HostNames::MayAsk(const Asker& asker, const std::string& host) const {
    return requests_ < rule_.requests && (waiting_.contains(host) || waiting_.size() < rule_.names) &&
           CountOf(of_connection_, asker.connection) < rule_.each &&
           CountOf(of_login_, asker.login) < rule_.each;
}

bool HostNames::Find(const Asker& asker, const std::string& host,
                     std::function<void(const Addresses&)> then) {
    if (!MayAsk(asker, host)) return false;
    ++requests_;
    ++of_connection_[asker.connection];
    ++of_login_[asker.login];
    auto& requests = waiting_[host];
    requests.push_back({asker, std::move(then)});
    if (requests.size() > 1) return true;
    platform_->Parts().resolver->Resolve(host, owner_,
                                         [this, host](const Addresses& found) { Answer(host, found); });
    return true;
}

void HostNames::Answer(const std::string& host, const Addresses& found) {
    const auto answered = waiting_.extract(host);
    requests_ -= answered.mapped().size();
    for (const auto& request : answered.mapped()) {
        OneLess(of_connection_, request.asker.connection);
        OneLess(of_login_, request.asker.login);
    }
    for (const auto& request : answered.mapped())
        request.then(found);
}

}  // namespace kq::zeb
