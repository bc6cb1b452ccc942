// Control messages are small by definition; a large one is refused before it is read as XML.
#include "libs/xmlbus/BusControl.h"

#include <charconv>

#include <kqappsession/Error.h>

#include "platform/Crypto.h"

namespace kq {

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

}  // namespace kq
