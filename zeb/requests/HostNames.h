// The addresses of host names that users restrict their logins to. A question may take the system's resolver
// many seconds and a thread. So only a user whose password was right has a name looked up, requests for the
// same name share one question, and the numbers of names and requests are limited: in all, for a connection
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
        std::size_t names = 64;        // that are looked up at once
        std::size_t requests = 1'000;  // that wait for all of them
        std::size_t each = 4;          // that wait for one connection, and for one login id
    };
    struct Asker {
        std::string connection;
        std::string login;
    };
    HostNames(PlatformPtr platform, const Rule& rule) : platform_(std::move(platform)), rule_(rule) {}

    // Calls `then` later, never from inside the call, with the numeric addresses of a name; none when there
    // is no such host. False, and `then` is never called, when too much is waiting already.
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
