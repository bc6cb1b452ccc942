// The message boxes of the procedures and dialogs, with texts of the string table.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <kqappsession/Platform.h>
#include <kqappsession/Signal.h>

#include "forms/DialogHost.h"
#include "messages/Texts.h"

namespace kq {

// Modal boxes with caption 400 (AskYesNoTitled: the text of title_id, with the same arguments). They raise
// RuntimeError::InvalidProcedureCall in a program without dialogs; the description ends with the text that
// would have been shown.
class MessageBoxes {
 public:
    // The boxes close unanswered when `withdrawn` is raised; null: never. It outlives their calls.
    explicit MessageBoxes(PlatformPtr platform, Signal<>* withdrawn = nullptr)
        : platform_(std::move(platform)), texts_(platform_), withdrawn_(withdrawn) {}

    bool AskYesNo(std::int32_t text_id, const Args& args = {}) const;
    bool AskYesNoTitled(std::int32_t text_id, std::int32_t title_id, const Args& args = {}) const;
    BoxButton AskYesNoCancel(std::int32_t text_id, const Args& args = {}) const;
    void ShowError(std::int32_t text_id, const Args& args = {}) const;
    void ShowWarning(std::int32_t text_id, const Args& args = {}) const;
    void ShowInfo(std::int32_t text_id, const Args& args = {}) const;
    // A warning whose text has no id.
    void ShowWarning(const std::string& text) const;

 private:
    BoxButton Box(const std::string& text, const std::string& caption, BoxStyle style) const;

    PlatformPtr platform_;
    Texts texts_;
    Signal<>* withdrawn_;
};

}  // namespace kq
