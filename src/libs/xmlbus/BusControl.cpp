// Builders and readers, made from the list. Control messages are small by definition; a large one is refused
// before it is read as XML.
#include "libs/xmlbus/BusControl.h"

#include <charconv>

#include <kqappsession/Error.h>

#include "platform/Crypto.h"

namespace kq {
namespace {

void WriteField(XMLMessage& message, std::string_view field, const control::Text& text) {
    message.SetField(field, text);
}
void WriteField(XMLMessage& message, std::string_view field, control::Count count) {
    message.SetField(field, std::to_string(count));
}

void ReadField(const XMLMessage& message, std::string_view field, control::Text& text) {
    text = message.Field(field);
}
void ReadField(const XMLMessage& message, std::string_view field, control::Count& count) {
    count = BusCount(message, field);
}

}  // namespace

std::string BusProofOf(const Crypto& crypto, std::string_view key, std::string_view role,
                       const BusGreeting& greeting) {
    std::string text(role);
    for (const auto* part : {&greeting.challenge, &greeting.nonce, &greeting.client}) {
        text += ':';
        text += *part;
    }
    return crypto.HmacSha256Hex(key, text);
}

XMLMessage MakeBusControl(std::string_view type) {
    return XMLMessage(type, kBusVersion);
}

XMLMessage ParseBusControl(std::string_view text) {
    XMLMessage message;
    message.LoadBusXML(text, {.bytes = kMaxBusControl, .depth = 8, .elements = 64});
    if (message.Version() != kBusVersion) {
        Raise(RuntimeError::InvalidProcedureCall, "Unknown version of the bus protocol");
    }
    return message;
}

std::int64_t BusCount(const XMLMessage& message, std::string_view field) {
    const std::string text = message.Field(field);
    std::int64_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end != text.data() + text.size()) return -1;
    return count >= 0 && count <= kMaxBusCount ? count : -1;
}

// NOLINTBEGIN(bugprone-macro-parentheses): kinds and members are names, which bear no parentheses.
#define KQ_WRITE(kind, name) WriteField(message, #name, name);
#define KQ_BUILD(type, sender, meaning, writes)     \
    XMLMessage type::Build() const {                \
        XMLMessage message = MakeBusControl(kType); \
        writes return message;                      \
    }
KQ_BUS_CONTROLS(KQ_BUILD, KQ_WRITE)
#undef KQ_BUILD
#undef KQ_WRITE

#define KQ_READ(kind, name) ReadField(message, #name, result.name);
#define KQ_READER(type, sender, meaning, reads)  \
    type type::Read(const XMLMessage& message) { \
        type result;                             \
        reads return result;                     \
    }
KQ_BUS_CONTROLS(KQ_READER, KQ_READ)
#undef KQ_READER
#undef KQ_READ
// NOLINTEND(bugprone-macro-parentheses)

}  // namespace kq
