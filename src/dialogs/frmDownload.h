// Fetches a newer client's installer over the open connection to the login server and saves it as a program
// in the temporary folder, with a bar that shows how far it is. Neither starts nor deletes it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <kqappsession/APClient.h>

#include "dialogs/Dialog.h"

namespace kq {

class frmDownload : public Dialog {
 public:
    struct Failure {
        std::int32_t number = 0;  // -1: a time-out, or an answer that is none
        std::string description;
    };

    static const FormRow& Row();
    using Dialog::Dialog;

    // True when the installer was saved; `client_path` is then its path and `try_again` stays. On failure the
    // user is asked whether to try again, and `try_again` is the answer; `client_path` stays. What is raised
    // is what the message boxes raise, nothing else. 15 seconds without any progress are a failure.
    // The connection's ReceiveMode and ReceiveType are others meanwhile.
    bool DownloadClient(const std::shared_ptr<APClient>& client, std::string& client_path, bool& try_again);
    // Why the last download failed.
    const Failure& LastFailure() const { return *failure_; }

 private:
    std::shared_ptr<Failure> failure_ = std::make_shared<Failure>();
};

}  // namespace kq
