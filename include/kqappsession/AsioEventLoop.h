// For hosts that run an asio::io_context of their own. This is the only public header that needs asio.
#pragma once

#include <memory>

#include <asio/io_context.hpp>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Export.h>

namespace kq {

// A loop that runs on `context`. The context must outlive the loop and be run by one thread at a time, either
// by the host (context.run) or by the library's own waits.
KQ_EXPORT std::shared_ptr<EventLoop> MakeAsioEventLoop(asio::io_context& context);

}  // namespace kq
