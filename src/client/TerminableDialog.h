// A dialog of a client object: it closes as if the user had cancelled when the client is terminated
// meanwhile, so that no window of a client that has gone stands before the program's own.
#pragma once

#include <optional>

#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>

namespace kq {

template <class Shown>
class TerminableDialog {
 public:
    TerminableDialog(const PlatformPtr& platform, Signal<>& terminated) : dialog_(std::in_place, platform) {
        terminated.Connect(owner_, [this] { dialog_.reset(); });
    }
    TerminableDialog(const TerminableDialog&) = delete;
    TerminableDialog& operator=(const TerminableDialog&) = delete;

    // For the call that shows it; afterwards the dialog may have gone.
    Shown* operator->() { return &*dialog_; }

 private:
    std::optional<Shown> dialog_;
    Owner owner_;
};

}  // namespace kq
