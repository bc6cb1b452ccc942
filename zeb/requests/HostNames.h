// Resolves the host names that logins are restricted to. A query may occupy the system's resolver and a
// thread for many seconds. So a name is resolved only for a user whose password was correct, requests for the
// same name share one query, and the numbers of names and requests are limited: in total, for a connection
// and for a login id.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>

namespace kq::zeb {

class HostNames {
 public:
    using Addresses = std::vector<std::string>;
    struct Rule {
        std::size_t names = 64;        // that are resolved at the same time
        std::size_t requests = 1'000;  // that wait for all of them
        std::size_t each = 4;          // that wait for one connection, and for one login id
    };
    struct Asker {
        std::string connection;
        std::string login;
    };
    HostNames(PlatformPtr platform, const Rule& rule) : platform_(std::move(platform)), rule_(rule) {}

    // Calls `then` later, never from inside the call, with the numeric addresses of a name; none if there is
    // no such host. False when too much is queued already; `then` is not called.
    bool Find(const Asker& asker, const std::string& host, std::function<void(const Addresses&)> then);

 private:
    struct Request {
        Asker asker;
        std::function<void(const Addresses&)> then;
    };
    using Counts = std::map<std::string, std::size_t>;

    bool MayAsk(const Asker& asker, const std::string& host) const;
    void Answer(const std::string& host, const Addresses& found);

    PlatformPtr platform_;
    Rule rule_;
    std::map<std::string, std::vector<Request>> waiting_;  // by name
    std::size_t requests_ = 0;
    Counts of_connection_;
    Counts of_login_;
    Owner owner_;
};

}  // namespace kq::zeb
