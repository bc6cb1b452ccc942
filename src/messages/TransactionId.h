// What names a registration on its way over the bus and back, in the field "TransID": the session that is
// registered and the connection that asked for it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kq {

struct TransactionId {
    std::string session_id;
    std::string client;  // the connection's identifier

    static constexpr char kSeparator = '|';

    // Whether a session can be named. The answer to one with a separator in its id could not be led back.
    static bool CanName(std::string_view session_id) {
        return session_id.find(kSeparator) == std::string_view::npos;
    }
    std::string Text() const { return session_id + kSeparator + client; }
    // Nothing unless the text has exactly two parts.
    static std::optional<TransactionId> Read(std::string_view text) {
        const std::size_t separator = text.find(kSeparator);
        if (separator == std::string_view::npos) return std::nullopt;
        const std::string_view client = text.substr(separator + 1);
        if (!CanName(client)) return std::nullopt;
        return TransactionId{std::string(text.substr(0, separator)), std::string(client)};
    }
};

}  // namespace kq
