// Placeholders, and which text belongs to which error.
#include "messages/Texts.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include "messages/Sentences.h"
#include "messages/TextIds.h"
#include "platform/Machine.h"
#include "platform/StringTable.h"

namespace kq {
namespace {

constexpr std::int32_t kFirstCode = static_cast<std::int32_t>(0x80040A00U);
// Arguments are counted in 16 bits; the count runs one past the last argument.
constexpr std::size_t kMostArguments = std::numeric_limits<std::int16_t>::max();

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
    return InLong(std::int64_t{offset} + TextId::kUnknownError);
}

}  // namespace

std::string Texts::FormatText(std::string text, const Args& args) {
    if (args.size() > kMostArguments) Raise(RuntimeError::Overflow);
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (!ReplaceAll(text, "%" + std::to_string(i) + "%", args[i])) text.append(" ").append(args[i]);
    }
    return text;
}

std::string Texts::LoadText(std::int32_t text_id) const {
    auto text = platform_->Parts().strings->Load(text_id);
    if (!text) Raise(RuntimeError::ResourceNotFound);
    return *std::move(text);
}

std::string Texts::GetASErrorText(std::int32_t code, const Args& args) const {
    return Text(TextIdOf(code), args);
}

void Texts::RaiseASError(std::int32_t code, const Args& args, ErrorCause cause) const {
    throw Error(code, std::string(kLibrarySource), GetASErrorText(code, args), cause);
}

Tongue Texts::Language() const {
    return platform_->Parts().strings->Language();
}

std::string Texts::ForUser(std::int32_t number, const std::string& description) const {
    return DescriptionIn(Language(), number, description);
}

std::string Texts::MapZEBError(const std::string& error_text) const {
    const auto known = std::ranges::find(kZEBErrors, error_text, &ZEBError::code);
    return known == kZEBErrors.end() ? error_text : LoadText(known->text_id);
}

}  // namespace kq
