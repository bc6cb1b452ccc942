// Forms, message boxes and the file dialog on Qt.
#pragma once

#include <cstdint>
#include <memory>

#include <kqappsession/EventLoop.h>

#include "forms/DialogHost.h"

namespace kq {

// The loop must be the one that runs the program's windows (MakeQtEventLoop). The toolkit's own words are
// those for a user of `locale`.
std::shared_ptr<DialogHost> MakeQtDialogHost(std::shared_ptr<EventLoop> loop, std::int32_t locale);

}  // namespace kq
