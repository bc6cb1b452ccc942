// Connections and listeners above the calls of a port.
#pragma once

#include <memory>

#include <kqappsession/EventLoop.h>

#include "platform/Socket.h"
#include "platform/net/SocketCalls.h"

namespace kq {

std::shared_ptr<Network> MakeTcpNetwork(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop);

}  // namespace kq
