// The table of failed attempts: a list in the order of use and an index over it.
#include "zeb/store/FailedAttempts.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

#include <sodium.h>

namespace kq::zeb {

FailedAttempts::FailedAttempts(std::shared_ptr<EventLoop> loop, const Rule& rule)
    : loop_(std::move(loop)), rule_(rule) {
    static_assert(std::is_trivially_copyable_v<Entry>, "an entry holds no text of a client");
    randombytes_buf(key_.data(), key_.size());
}

FailedAttempts::Fingerprint FailedAttempts::FingerprintOf(const std::string& login) const {
    Fingerprint fingerprint;
    crypto_generichash(fingerprint.data(), fingerprint.size(),
                       reinterpret_cast<const unsigned char*>(login.data()), login.size(), key_.data(),
                       key_.size());
    return fingerprint;
}

Milliseconds FailedAttempts::DelayAfter(int failures) const {
    if (failures < rule_.free) return Milliseconds(0);
    // 20 doublings pass every sensible longest delay and cannot overflow.
    const int doublings = std::min(failures - rule_.free, 20);
    return std::min(rule_.longest, rule_.first * (1 << doublings));
}

void FailedAttempts::Forget(EventLoop::TimePoint now) {
    const auto outdated = [&] {
        return entries_.size() >= rule_.table || entries_.front().last + rule_.forget <= now;
    };
    while (!entries_.empty() && outdated()) {
        by_login_.erase(entries_.front().login);
        entries_.pop_front();
    }
}

bool FailedAttempts::Begin(const std::string& login) {
    const auto found = by_login_.find(FingerprintOf(login));
    if (found == by_login_.end()) return true;
    Entry& entry = *found->second;
    const auto now = loop_->Now();
    if (now < entry.not_before) return false;
    entry.not_before = now + DelayAfter(entry.failures);
    return true;
}

void FailedAttempts::Failed(const std::string& login) {
    const auto now = loop_->Now();
    const auto fingerprint = FingerprintOf(login);
    auto found = by_login_.find(fingerprint);
    if (found == by_login_.end()) {
        Forget(now);
        entries_.push_back({fingerprint, 0, now, now});
        found = by_login_.emplace(fingerprint, std::prev(entries_.end())).first;
    }
    Entry& entry = *found->second;
    entries_.splice(entries_.end(), entries_, found->second);
    if (entry.last + rule_.forget <= now) entry.failures = 0;
    ++entry.failures;
    entry.last = now;
    entry.not_before = now + DelayAfter(entry.failures);
}

void FailedAttempts::Succeeded(const std::string& login) {
    const auto found = by_login_.find(FingerprintOf(login));
    if (found == by_login_.end()) return;
    entries_.erase(found->second);
    by_login_.erase(found);
}

void FailedAttempts::Withdraw(const std::string& login) {
    const auto found = by_login_.find(FingerprintOf(login));
    if (found != by_login_.end()) found->second->not_before = loop_->Now();
}

}  // namespace kq::zeb
