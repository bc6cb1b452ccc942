// Name resolution above the calls of a port.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kqappsession/EventLoop.h>

#include "platform/Resolver.h"

namespace kq {

// The calls of the system. Implemented by the port; several threads use it at the same time.
class NameCalls {
 public:
    enum class Family { IPv4, IPv6 };

    virtual ~NameCalls() = default;
    virtual std::string LocalHostName() = 0;  // empty: unknown
    // A numeric address as the system writes it; nothing for a name. Does not wait.
    virtual std::optional<std::string> Numeric(const std::string& text) = 0;
    // Waits as long as the system's resolver does. Numeric addresses in its order; empty: not found.
    virtual std::vector<std::string> Ask(const std::string& host, Family family) = 0;
    // As Resolver::FirstIPv4.
    virtual std::string FirstIPv4(const std::string& host) = 0;
    // Runs `work` on a separate thread that is not waited for. False when no thread can be started.
    virtual bool RunOnThread(std::function<void()> work) = 0;
};

std::shared_ptr<Resolver> MakeNameLookup(std::shared_ptr<NameCalls> calls, std::shared_ptr<EventLoop> loop);

}  // namespace kq
