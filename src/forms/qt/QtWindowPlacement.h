// Placement of the program's own top-level widgets. A window's handle is what QWidget::winId tells.
#pragma once

#include <memory>

#include "platform/WindowPlacement.h"

namespace kq {

std::shared_ptr<WindowPlacement> MakeQtWindowPlacement();

}  // namespace kq
