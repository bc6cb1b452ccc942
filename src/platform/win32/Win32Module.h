// The module (program or DLL) that holds this code.
#pragma once

#include <functional>

#include "platform/win32/Win32Api.h"

namespace kq {

HINSTANCE ThisModule();

// Runs `work` on a thread of its own, which keeps this module loaded until the work is done. False when there
// is no thread to be had; the work is then not done. An exception that leaves the work is reported as a stray
// one.
bool RunOnWorkerThread(std::function<void()> work);

}  // namespace kq
