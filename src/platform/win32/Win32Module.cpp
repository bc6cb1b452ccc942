// A worker must not be a std::thread: one that outlives its DLL returns into code that has been unloaded.
// This one holds the DLL and releases it by the only call that does not return.
#include "platform/win32/Win32Module.h"

#include <exception>
#include <memory>
#include <utility>

#include <kqappsession/Signal.h>

namespace kq {
namespace {

struct Job {
    std::function<void()> work;
    HMODULE module = nullptr;
};

HMODULE FindModule(DWORD flags) {
    HMODULE module = nullptr;
    GetModuleHandleExW(flags | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&ThisModule)), &module);
    return module;
}

// A separate function, so that nothing is left to destroy when the module is released.
HMODULE Do(std::unique_ptr<Job> job) {
    try {
        job->work();
    } catch (...) {
        ReportStrayException(std::current_exception());
    }
    return job->module;
}

DWORD WINAPI Work(void* job) {
    FreeLibraryAndExitThread(Do(std::unique_ptr<Job>(static_cast<Job*>(job))), 0);
}

}  // namespace

HINSTANCE ThisModule() {
    return FindModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
}

bool RunOnWorkerThread(std::function<void()> work) {
    auto job = std::make_unique<Job>(Job{std::move(work), FindModule(0)});
    const HANDLE thread = CreateThread(nullptr, 0, &Work, job.get(), 0, nullptr);
    if (!thread) {
        FreeLibrary(job->module);
        return false;
    }
    static_cast<void>(job.release());  // the thread's
    CloseHandle(thread);
    return true;
}

}  // namespace kq
