// Forms, message boxes and the question for a file on Qt.
#pragma once

#include <memory>

#include <kqappsession/EventLoop.h>

#include "platform/DialogHost.h"

namespace kq {

// The loop must be the one that runs the program's windows (MakeQtEventLoop).
std::shared_ptr<DialogHost> MakeQtDialogHost(std::shared_ptr<EventLoop> loop);

}  // namespace kq
