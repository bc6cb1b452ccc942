// What the client and the server side share: errors with localised texts, message boxes, the classification
// of received data, the computer's name and the sharing of a folder.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessErrorEnum.h>
#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>
#include <kqappsession/WebData.h>
#include <kqappsession/XMLMessage.h>

#include "forms/DialogHost.h"

namespace kq {

// Arguments of a text: [0] for %0%, [1] for %1% and so on.
using Args = std::vector<std::string>;

// What a received text was found to be; the numbers are fixed.
enum class ASDataKind : std::int32_t {
    TranslationTable = 0,
    DataTable = 1,
    Profiles = 2,
    XMLMessage = 3,
    None = 4
};

struct ASData {
    ASDataKind kind = ASDataKind::None;
    std::variant<std::monostate, std::shared_ptr<TranslationTable>, std::shared_ptr<DataTable>,
                 std::shared_ptr<Profiles>, std::shared_ptr<XMLMessage>>
        object;
    // Null when the data is no message.
    std::shared_ptr<XMLMessage> Message() const;
};

class modASMsg {
 public:
    // The message boxes close unanswered when `withdrawn` is raised; null: never. It outlives their calls.
    explicit modASMsg(PlatformPtr platform, Signal<>* withdrawn = nullptr)
        : platform_(std::move(platform)), withdrawn_(withdrawn) {}

    // Replaces every %i% by argument i, in increasing order of i, so an argument that holds a later
    // placeholder is substituted in its turn. An argument without a placeholder is appended after a blank; a
    // placeholder without an argument stays. An argument whose placeholder is followed by a full stop loses
    // its own final full stop. More than 32,767 arguments overflow.
    static std::string FormatText(std::string text, const Args& args);

    // The text of an id in the user's language; RuntimeError::ResourceNotFound when there is none.
    std::string LoadText(std::int32_t text_id) const;
    std::string Text(std::int32_t text_id, const Args& args = {}) const {
        return FormatText(LoadText(text_id), args);
    }

    // The description of a code of KQAppSessErrorEnum. A code far outside the range overflows; one without a
    // text raises RuntimeError::ResourceNotFound instead.
    std::string GetASErrorText(std::int32_t code, const Args& args = {}) const;
    [[noreturn]] void RaiseASError(std::int32_t code, const Args& args = {},
                                   ErrorCause cause = ErrorCause::Other) const;

    // The text of one of the login server's password codes ("ZEBError-132"); anything else comes back
    // unchanged.
    std::string MapZEBError(const std::string& error_text) const;

    // Modal message boxes with caption 400 (AskYesNoTitled: the text of title_id, with the same arguments).
    // RuntimeError::InvalidProcedureCall in a program without dialogs; its description ends with the text
    // that would have been shown.
    bool AskYesNo(std::int32_t text_id, const Args& args = {}) const;
    bool AskYesNoTitled(std::int32_t text_id, std::int32_t title_id, const Args& args = {}) const;
    BoxButton AskYesNoCancel(std::int32_t text_id, const Args& args = {}) const;
    void ShowError(std::int32_t text_id, const Args& args = {}) const;
    void ShowWarning(std::int32_t text_id, const Args& args = {}) const;
    void ShowInfo(std::int32_t text_id, const Args& args = {}) const;
    // A warning whose text has no id.
    void ShowWarning(const std::string& text) const;

    // Tries message, profile collection, data table, translation table in this order; the first whose loader
    // accepts the text wins. Never raises.
    static ASData ParseASData(const std::string& text);

    // The computer's short name, at most 15 characters.
    std::string GetLocalComputerName() const;

    // The network path of the folder's share, "\\COMPUTER\name\", which is asked for when it cannot be
    // listed. The path is returned whether or not the share stands. Never raises, never waits.
    std::string EnsureShare(const std::string& folder_path, const std::string& share_name) const;

 private:
    BoxButton Box(const std::string& text, const std::string& caption, BoxStyle style) const;

    PlatformPtr platform_;
    Signal<>* withdrawn_;
};

}  // namespace kq
