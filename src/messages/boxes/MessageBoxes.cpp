// Which text, caption and style each box has.
#include "messages/boxes/MessageBoxes.h"

#include <kqappsession/Error.h>

#include "messages/TextIds.h"
#include "platform/Machine.h"

namespace kq {

bool MessageBoxes::AskYesNo(std::int32_t text_id, const Args& args) const {
    return Box(texts_.Text(text_id, args), texts_.LoadText(TextId::kBoxCaption), BoxStyle::YesNo) ==
           BoxButton::Yes;
}

bool MessageBoxes::AskYesNoTitled(std::int32_t text_id, std::int32_t title_id, const Args& args) const {
    return Box(texts_.Text(text_id, args), texts_.Text(title_id, args), BoxStyle::YesNo) == BoxButton::Yes;
}

BoxButton MessageBoxes::AskYesNoCancel(std::int32_t text_id, const Args& args) const {
    return Box(texts_.Text(text_id, args), texts_.LoadText(TextId::kBoxCaption), BoxStyle::YesNoCancel);
}

void MessageBoxes::ShowError(std::int32_t text_id, const Args& args) const {
    Box(texts_.Text(text_id, args), texts_.LoadText(TextId::kBoxCaption), BoxStyle::Error);
}

void MessageBoxes::ShowWarning(std::int32_t text_id, const Args& args) const {
    ShowWarning(texts_.Text(text_id, args));
}

void MessageBoxes::ShowInfo(std::int32_t text_id, const Args& args) const {
    Box(texts_.Text(text_id, args), texts_.LoadText(TextId::kBoxCaption), BoxStyle::Information);
}

void MessageBoxes::ShowWarning(const std::string& text) const {
    Box(text, texts_.LoadText(TextId::kBoxCaption), BoxStyle::Warning);
}

// This object may be destroyed when the box closes, so the host is held and nothing is touched afterwards.
BoxButton MessageBoxes::Box(const std::string& text, const std::string& caption, BoxStyle style) const {
    const auto dialogs = platform_->Parts().dialogs;
    if (!dialogs) {
        Raise(RuntimeError::InvalidProcedureCall,
              "This program has no dialogs, so the user cannot be asked: " + text);
    }
    return withdrawn_ ? dialogs->ShowMessageBox(text, caption, style, *withdrawn_)
                      : dialogs->ShowMessageBox(text, caption, style);
}

}  // namespace kq
