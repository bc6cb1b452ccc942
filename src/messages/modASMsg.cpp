// Texts, errors, message boxes, the classification of received text, and the share of a folder.
#include "messages/modASMsg.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include <kqappsession/Error.h>

#include "base/Utf.h"
#include "platform/FileShare.h"
#include "platform/Machine.h"
#include "platform/Process.h"
#include "platform/StringTable.h"

namespace kq {
namespace {

constexpr std::int32_t kCaption = 400;
constexpr std::int32_t kFirstCode = static_cast<std::int32_t>(0x80040A00U);
constexpr std::int32_t kFirstErrorText = 1000;
// Arguments are counted in 16 bits; the count runs one past the last argument.
constexpr std::size_t kMostArguments = std::numeric_limits<std::int16_t>::max();
constexpr std::size_t kComputerNameLength = 15;

struct ZEBError {
    std::string_view code;
    std::int32_t text_id;
};
constexpr std::array kZEBErrors = {
    ZEBError{"ZEBError-130", 550}, ZEBError{"ZEBError-131", 551}, ZEBError{"ZEBError-132", 552},
    ZEBError{"ZEBError-301", 553}, ZEBError{"ZEBError-302", 554}, ZEBError{"ZEBError-303", 555},
    ZEBError{"ZEBError-304", 556}, ZEBError{"ZEBError-305", 557}, ZEBError{"ZEBError-306", 558},
};

// A value without the full stop that ends it.
std::string_view WithoutFullStop(std::string_view value) {
    const std::size_t last = value.find_last_not_of(" \t\r\n");
    return last != std::string_view::npos && value[last] == '.' ? value.substr(0, last) : value;
}

// False when `placeholder` does not occur. What was put in is not searched again. A value before a full stop
// loses its own: servers send whole sentences.
bool ReplaceAll(std::string& text, std::string_view placeholder, std::string_view value) {
    std::size_t found = text.find(placeholder);
    if (found == std::string::npos) return false;
    const std::string_view stopless = WithoutFullStop(value);
    std::string replaced;
    std::size_t from = 0;
    for (; found != std::string::npos; found = text.find(placeholder, from)) {
        replaced.append(text, from, found - from);
        from = found + placeholder.size();
        const bool before_stop = from < text.size() && text[from] == '.';
        replaced.append(before_stop ? stopless : value);
    }
    text = replaced.append(text, from);
    return true;
}

std::int32_t InLong(std::int64_t value) {
    if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
        Raise(RuntimeError::Overflow);
    return static_cast<std::int32_t>(value);
}

// Each step overflows on its own.
std::int32_t TextIdOf(std::int32_t code) {
    const std::int32_t offset = InLong(std::int64_t{code} - kFirstCode);
    return InLong(std::int64_t{offset} + kFirstErrorText);
}

// Null when the text is none of T's.
template <class T>
std::shared_ptr<T> Load(const std::string& text) {
    try {
        auto object = std::make_shared<T>();
        object->LoadXML(text);
        return object;
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace

std::shared_ptr<XMLMessage> ASData::Message() const {
    const auto* message = std::get_if<std::shared_ptr<XMLMessage>>(&object);
    return message ? *message : nullptr;
}

std::string modASMsg::FormatText(std::string text, const Args& args) {
    if (args.size() > kMostArguments) Raise(RuntimeError::Overflow);
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (!ReplaceAll(text, "%" + std::to_string(i) + "%", args[i])) text.append(" ").append(args[i]);
    }
    return text;
}

std::string modASMsg::LoadText(std::int32_t text_id) const {
    auto text = platform_->Parts().strings->Load(text_id);
    if (!text) Raise(RuntimeError::ResourceNotFound);
    return *std::move(text);
}

std::string modASMsg::GetASErrorText(std::int32_t code, const Args& args) const {
    return Text(TextIdOf(code), args);
}

void modASMsg::RaiseASError(std::int32_t code, const Args& args, ErrorCause cause) const {
    throw Error(code, std::string(kLibrarySource), GetASErrorText(code, args), cause);
}

std::string modASMsg::MapZEBError(const std::string& error_text) const {
    const auto known = std::ranges::find(kZEBErrors, error_text, &ZEBError::code);
    return known == kZEBErrors.end() ? error_text : LoadText(known->text_id);
}

bool modASMsg::AskYesNo(std::int32_t text_id, const Args& args) const {
    return Box(Text(text_id, args), LoadText(kCaption), BoxStyle::YesNo) == BoxButton::Yes;
}

bool modASMsg::AskYesNoTitled(std::int32_t text_id, std::int32_t title_id, const Args& args) const {
    return Box(Text(text_id, args), Text(title_id, args), BoxStyle::YesNo) == BoxButton::Yes;
}

BoxButton modASMsg::AskYesNoCancel(std::int32_t text_id, const Args& args) const {
    return Box(Text(text_id, args), LoadText(kCaption), BoxStyle::YesNoCancel);
}

void modASMsg::ShowError(std::int32_t text_id, const Args& args) const {
    Box(Text(text_id, args), LoadText(kCaption), BoxStyle::Error);
}

void modASMsg::ShowWarning(std::int32_t text_id, const Args& args) const {
    Box(Text(text_id, args), LoadText(kCaption), BoxStyle::Warning);
}

void modASMsg::ShowInfo(std::int32_t text_id, const Args& args) const {
    Box(Text(text_id, args), LoadText(kCaption), BoxStyle::Information);
}

void modASMsg::ShowWarning(const std::string& text) const {
    Box(text, LoadText(kCaption), BoxStyle::Warning);
}

// This object may be destroyed when the box closes, so the host is held and nothing is touched afterwards.
BoxButton modASMsg::Box(const std::string& text, const std::string& caption, BoxStyle style) const {
    const auto dialogs = platform_->Parts().dialogs;
    if (!dialogs) {
        Raise(RuntimeError::InvalidProcedureCall,
              "This program has no dialogs, so the user cannot be asked: " + text);
    }
    return withdrawn_ ? dialogs->ShowMessageBox(text, caption, style, *withdrawn_)
                      : dialogs->ShowMessageBox(text, caption, style);
}

ASData modASMsg::ParseASData(const std::string& text) {
    if (auto message = Load<XMLMessage>(text)) return {ASDataKind::XMLMessage, std::move(message)};
    if (auto profiles = Load<Profiles>(text)) return {ASDataKind::Profiles, std::move(profiles)};
    if (auto table = Load<DataTable>(text)) return {ASDataKind::DataTable, std::move(table)};
    if (auto texts = Load<TranslationTable>(text)) return {ASDataKind::TranslationTable, std::move(texts)};
    return {};
}

std::string modASMsg::GetLocalComputerName() const {
    return std::string(FirstCharacters(platform_->Parts().process->ComputerName(), kComputerNameLength));
}

// The folder is named inside quotation marks when it is shared, so one of its own cannot be told from the
// end.
std::string modASMsg::EnsureShare(const std::string& folder_path, const std::string& share_name) const {
    std::string path;
    try {
        path = "\\\\" + GetLocalComputerName() + "\\" + share_name + "\\";
        const bool quotable = (folder_path + share_name).find('"') == std::string::npos;
        if (quotable && !platform_->Parts().file_share->CanList(path))
            platform_->Parts().file_share->Share(share_name, folder_path);
    } catch (const std::exception&) {
        // The path is told whether or not the share stands.
    }
    return path;
}

}  // namespace kq
