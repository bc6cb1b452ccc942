// The addresses of host names that clients give before anybody knows who they are. A question may take the
// system's resolver many seconds and a thread, so requests for the same name share one, and only so many
// names and requests may wait.
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
    };
    HostNames(PlatformPtr platform, const Rule& rule) : platform_(std::move(platform)), rule_(rule) {}

    // Calls `then` later, never from inside the call, with the numeric addresses of a name or of a numeric
    // address; none when there is no such host. False when too much waits already.
    bool Find(const std::string& host, std::function<void(const Addresses&)> then);

 private:
    void Answer(const std::string& host, const Addresses& found);

    PlatformPtr platform_;
    Rule rule_;
    std::map<std::string, std::vector<std::function<void(const Addresses&)>>> waiting_;  // by name
    std::size_t requests_ = 0;
    Owner owner_;
};

}  // namespace kq::zeb
