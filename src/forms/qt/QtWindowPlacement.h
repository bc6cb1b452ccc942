// Placement of the program's top-level widgets. A window's handle is the result of QWidget::winId.
#pragma once

#include <memory>

#include "platform/WindowPlacement.h"

namespace kq {

std::shared_ptr<WindowPlacement> MakeQtWindowPlacement();

}  // namespace kq
