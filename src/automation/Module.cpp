#include "automation/Module.h"

#include <atomic>
#include <map>
#include <mutex>

#include "automation/Guard.h"

namespace kq::automation {
namespace {

std::atomic<long> in_use = 0;

struct Platforms {
    std::mutex mutex;
    std::map<DWORD, std::weak_ptr<const Platform>> by_thread;
};

Platforms& ThePlatforms() {
    static Platforms platforms;
    return platforms;
}

}  // namespace

Living::Living() noexcept {
    ++in_use;
}

Living::~Living() {
    --in_use;
}

void LockModule(bool lock) noexcept {
    in_use += lock ? 1 : -1;
}

bool CanUnload() noexcept {
    if (in_use != 0) return false;
    Platforms& platforms = ThePlatforms();
    const std::lock_guard lock(platforms.mutex);
    std::erase_if(platforms.by_thread, [](const auto& entry) { return entry.second.expired(); });
    return platforms.by_thread.empty();
}

HINSTANCE ThisModuleHandle() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&ThisModuleHandle)), &module);
    return module;
}

std::wstring ThisModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(ThisModuleHandle(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) throw Failure(HRESULT_FROM_WIN32(GetLastError()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

PlatformPtr ThreadPlatform() {
    Platforms& platforms = ThePlatforms();
    const std::lock_guard lock(platforms.mutex);
    auto& known = platforms.by_thread[GetCurrentThreadId()];
    PlatformPtr platform = known.lock();
    if (!platform) known = platform = MakePlatform();
    return platform;
}

}  // namespace kq::automation
