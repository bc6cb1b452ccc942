// The DLL as a whole: what keeps it loaded, where it lies, and the bundle of platform parts of each thread.
#pragma once

#include <string>
#include <windows.h>

#include <kqappsession/Platform.h>

namespace kq::automation {

// Every automation object holds one of these.
class Living {
 public:
    Living() noexcept;
    ~Living();
    Living(const Living&) = delete;
    Living& operator=(const Living&) = delete;
};

void LockModule(bool lock) noexcept;
// Nothing of this DLL is in use: no object, no lock, no thread's platform.
bool CanUnload() noexcept;

HINSTANCE ThisModuleHandle();
std::wstring ThisModulePath();

// The calling thread's platform, made for the first object that needs one; it goes with the last.
PlatformPtr ThreadPlatform();

}  // namespace kq::automation
