// From host names to addresses.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <kqappsession/Signal.h>

namespace kq {

class Resolver {
 public:
    virtual ~Resolver() = default;
    // The first IPv4 address as dotted text, empty on any failure. Blocks the thread for as long as the
    // system's resolver does. A dotted address is returned unchanged; an empty name means the local host.
    virtual std::string FirstIPv4(const std::string& host) = 0;
    // Calls `done` on the loop's thread with the numeric addresses of `host` in the resolver's order, IPv4
    // before IPv6 (empty: not found), unless `owner` has been destroyed or cancelled. Never calls it before
    // returning.
    virtual void Resolve(const std::string& host, const Owner& owner,
                         std::function<void(std::vector<std::string>)> done) = 0;
};

}  // namespace kq
