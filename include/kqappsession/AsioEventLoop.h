// For programs that run an asio::io_context. This is the only public header that needs asio.
#pragma once

#include <memory>

#include <asio/io_context.hpp>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Export.h>

namespace kq {

// A loop that runs on `context`, to be given to MakePlatform. The context must outlive the loop. One thread
// at a time may run it: the program (context.run) or a wait of the library, which runs the context itself. A
// wait ends early, as at its deadline, when the program stops the context. Destroying the loop does not stop
// the context.
KQ_EXPORT std::shared_ptr<EventLoop> MakeAsioEventLoop(asio::io_context& context);

}  // namespace kq
