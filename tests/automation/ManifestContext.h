// The automation DLL by its manifest, without registration, as long as this lives.
#pragma once

#include <stdexcept>
#include <string>
#include <windows.h>

namespace kq {

class ManifestContext {
 public:
    // `folder` holds the DLL; `manifest` may lie elsewhere.
    ManifestContext(const std::wstring& manifest, const std::wstring& folder) {
        ACTCTXW context{};
        context.cbSize = sizeof context;
        context.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
        context.lpSource = manifest.c_str();
        context.lpAssemblyDirectory = folder.c_str();
        context_ = CreateActCtxW(&context);
        if (context_ == INVALID_HANDLE_VALUE || !ActivateActCtx(context_, &cookie_)) {
            throw std::runtime_error("the manifest cannot be used");
        }
    }
    ManifestContext(const ManifestContext&) = delete;
    ManifestContext& operator=(const ManifestContext&) = delete;
    ~ManifestContext() {
        DeactivateActCtx(0, cookie_);
        ReleaseActCtx(context_);
    }
    HANDLE Handle() const { return context_; }

 private:
    HANDLE context_ = nullptr;
    ULONG_PTR cookie_ = 0;
};

}  // namespace kq
