// Slows down guessing: after a few failed attempts in a row a login id has to wait before the next attempt is
// checked, longer every time. Unknown ids are treated in the same way, so the wait does not reveal which
// users exist.
//
// The table holds keyed hashes of the ids. An entry has a fixed size whatever a client sends, and the
// server's memory does not contain what users typed as their login id.
#pragma once

#include <array>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <string>

#include <kqappsession/EventLoop.h>

namespace kq::zeb {

class FailedAttempts {
 public:
    struct Rule {
        int free = 5;               // attempts without waiting
        Milliseconds first{1'000};  // doubles with every further failure
        Milliseconds longest{5 * 60 * 1'000};
        Milliseconds forget{30 * 60 * 1'000};  // without an attempt
        std::size_t table = 10'000;  // ids that are remembered; the least recently used one is removed
    };
    FailedAttempts(std::shared_ptr<EventLoop> loop, const Rule& rule);

    // Whether an attempt may be checked now. While an id has to wait between attempts, one at a time may.
    bool Begin(const std::string& login);
    void Failed(const std::string& login);
    void Succeeded(const std::string& login);
    // The attempt that Begin allowed was not checked after all.
    void Withdraw(const std::string& login);
    std::size_t Size() const { return entries_.size(); }

 private:
    using Fingerprint = std::array<unsigned char, 16>;
    struct Entry {
        Fingerprint login;
        int failures = 0;
        EventLoop::TimePoint last;
        EventLoop::TimePoint not_before;
    };
    using Entries = std::list<Entry>;  // the least recently used one first

    Fingerprint FingerprintOf(const std::string& login) const;
    Milliseconds DelayAfter(int failures) const;
    void Forget(EventLoop::TimePoint now);

    std::shared_ptr<EventLoop> loop_;
    Rule rule_;
    Entries entries_;
    std::map<Fingerprint, Entries::iterator> by_login_;
    std::array<unsigned char, 32> key_{};  // random, so that nobody can choose ids that collide
};

}  // namespace kq::zeb
