// The first event that ends the wait decides; it may come before the window is shown, which then is not shown
// at all. A time-out and an unknown answer are described by the whole sentence of text 950, which then stands
// inside itself in the question.
#include "dialogs/frmDownload.h"

#include <algorithm>

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "messages/ASMessages.h"
#include "messages/ParseASData.h"
#include "messages/TextIds.h"
#include "platform/Machine.h"
#include "platform/TempFiles.h"

namespace kq {
namespace {

constexpr std::int32_t kFailed = 950;
constexpr std::int32_t kNoNumber = -1;
constexpr std::int32_t kReset = 10054;  // the connection has ended without an error of its own

constexpr std::string_view kPrefix = "HLX";
constexpr std::string_view kTemporary = "tmp";
constexpr std::string_view kProgram = "exe";

enum class Outcome { Waiting, Success, Failure };

// Events and blocks of any type while it lives, as before afterwards.
class ReceiveSettings {
 public:
    explicit ReceiveSettings(std::shared_ptr<APClient> client)
        : client_(std::move(client)), mode_(client_->ReceiveMode()), type_(client_->ReceiveType()) {
        client_->SetReceiveMode(ReceiveMode::Events);
        client_->SetReceiveType(DataType::Any);
    }
    ReceiveSettings(const ReceiveSettings&) = delete;
    ReceiveSettings& operator=(const ReceiveSettings&) = delete;
    ~ReceiveSettings() {
        client_->SetReceiveMode(mode_);
        client_->SetReceiveType(type_);
    }

 private:
    const std::shared_ptr<APClient> client_;
    const ReceiveMode mode_;
    const DataType type_;
};

class DownloadWindow : public Window {
 public:
    DownloadWindow(Dialog& dialog, std::shared_ptr<frmDownload::Failure> failure)
        : Window(dialog, frmDownload::Row()), failure_(std::move(failure)) {
        timer_.OnTick(
            [this] { Fail(kNoNumber, texts_.Text(kFailed, {texts_.LoadText(TextId::kTimedOut)})); });
    }

    bool Run(const std::shared_ptr<APClient>& client, std::string& client_path, bool& try_again) {
        const ReceiveSettings settings(client);
        client->Receive.Connect(owner_, [this](const Block& block) { Client_Receive(block); });
        client->Progress.Connect(owner_, [this](const std::string&, std::int64_t so_far, std::int64_t total) {
            Client_Progress(so_far, total);
        });
        client->Error.Connect(owner_, [this](std::int32_t number, const std::string& description) {
            Fail(number, texts_.ForUser(number, description));
        });
        client->Disconnected.Connect(owner_,
                                     [this] { Fail(kReset, texts_.ForUser(kReset, NetErrorText(kReset))); });
        Request(*client);
        if (outcome_ == Outcome::Waiting) {
            timer_.SetTimerEnabled(true);
            form_->ShowModal();
        }
        if (outcome_ == Outcome::Success)
            client_path = path_;
        else if (outcome_ == Outcome::Failure)
            try_again = boxes_.AskYesNo(kFailed, {failure_->description});
        else
            try_again = false;  // closed by the program's end, which leaves nobody to ask
        return outcome_ == Outcome::Success;
    }

 private:
    void Request(APClient& client) {
        try {
            client.Send(ASDownloadClientRequest().Build());
        } catch (const Error& error) {
            Fail(error.Number(), texts_.ForUser(error));
        }
    }

    void Decide(Outcome outcome) {
        outcome_ = outcome;
        timer_.SetTimerEnabled(false);
        form_->Hide();
    }

    void Fail(std::int32_t number, const std::string& description) {
        if (outcome_ != Outcome::Waiting) return;
        *failure_ = {number, description};
        Decide(Outcome::Failure);
    }

    void Client_Receive(const Block& block) {
        if (outcome_ != Outcome::Waiting) return;
        switch (block.data_type) {
            case DataType::Raw:
                Save(block.data);
                break;
            case DataType::XML:
                ReadRefusal(block.data);
                break;
            default:
                FailUnknown();
        }
    }

    void Client_Progress(std::int64_t so_far, std::int64_t total) {
        if (outcome_ != Outcome::Waiting) return;
        bar_.SetProgress({0, total, std::min(so_far, total)});
        timer_.SetTimerEnabled(false);
        timer_.SetTimerEnabled(true);
    }

    void FailUnknown() { Fail(kNoNumber, texts_.Text(kFailed, {texts_.LoadText(TextId::kUnknownResponse)})); }

    void ReadRefusal(const std::string& xml) {
        const auto message = ParseASData(xml).Message();
        if (!message) return FailUnknown();
        const auto refusal = ASDownloadClientResponse::Read(*message);
        Fail(ReceivedValLong(refusal.ErrorNumber), refusal.ErrorDesc);
    }

    void Save(const std::string& bytes) {
        std::string path;
        FileResult result = platform_->Parts().temp_files->CreateUnique(kPrefix, path);
        if (result.error == 0) {
            path.resize(path.size() - kTemporary.size());
            path += kProgram;
            result = platform_->Parts().temp_files->WriteNewProgram(path, bytes);
        }
        if (result.error != 0) return Fail(result.error, result.description);
        path_ = path;
        Decide(Outcome::Success);
    }

    const std::shared_ptr<frmDownload::Failure> failure_;
    Outcome outcome_ = Outcome::Waiting;
    std::string path_;
    Control& bar_ = At("pbProgress");
    Control& timer_ = At("Timer1");
    Owner owner_;
};

}  // namespace

const FormRow& frmDownload::Row() {
    using enum ControlKind;
    static const FormRow row{.name = "frmDownload",
                             .caption_id = 900,
                             .closing = Closing::Refused,
                             .controls = {
                                 {.kind = Label, .name = "lblIntro", .text_id = 901},
                                 {.kind = ProgressBar, .name = "pbProgress"},
                                 {.kind = Timer, .name = "Timer1", .interval = 15'000},
                             }};
    return row;
}

bool frmDownload::DownloadClient(const std::shared_ptr<APClient>& client, std::string& client_path,
                                 bool& try_again) {
    return DownloadWindow(*this, failure_).Run(client, client_path, try_again);
}

}  // namespace kq
