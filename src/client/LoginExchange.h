// One request and its reply on a connection, as every login step makes it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <kqappsession/APClient.h>

#include "messages/ASMessages.h"
#include "messages/Texts.h"

namespace kq {

class Procedure;

// The pause between a request and the wait for its reply.
inline constexpr float kLoginPause = 0.25F;

struct Received {
    bool received = false;
    std::string failure;                  // not received: why, in the user's language
    std::shared_ptr<XMLMessage> message;  // null when the block was no message
    std::int32_t improper = 0;            // received, but not the awaited message: text 500 or 501 says so
};

// A reply and its fields as the awaited message has them; those that it lacks are empty.
template <class Response>
struct Reply : Received {
    Response fields;
};

// The two below for any message.
Received TakeAny(Procedure& procedure, APClient& client, std::string_view awaited_type,
                 std::int32_t time_out);
Received ExchangeAny(Procedure& procedure, APClient& client, const XMLMessage& request,
                     std::string_view awaited_type, std::int32_t time_out);

template <class Response>
Reply<Response> ReadReply(Received received) {
    Response fields = received.message ? Response::Read(*received.message) : Response();
    return {std::move(received), std::move(fields)};
}

// Waits for the next block and sees what it is. An empty block counts as no reply.
template <class Response>
Reply<Response> TakeReply(Procedure& procedure, APClient& client, std::int32_t time_out) {
    return ReadReply<Response>(TakeAny(procedure, client, Response::kType, time_out));
}
// Sends the request, pauses, then takes the reply; a request that cannot be sent has no reply.
template <class Response>
Reply<Response> Exchange(Procedure& procedure, APClient& client, const XMLMessage& request,
                         std::int32_t time_out) {
    return ReadReply<Response>(ExchangeAny(procedure, client, request, Response::kType, time_out));
}

// What a reply's "ErrorNumber" says in the system login: absent, empty and "0" are success, every other text
// is an error, with its numeric value as code (0: none of its own).
struct ReplyError {
    bool failed = false;
    std::int32_t code = 0;
};
ReplyError ReadReplyError(const std::string& error_number);

// The text for a failure that the login server reports: its codes mapped to texts, "ErrorParam" before
// "ErrorDesc", else the first of "ErrorDesc" and "ErrorParam" that is not empty.
std::string ZEBFailureText(const Texts& texts, const std::string& error_desc, const std::string& error_param);

}  // namespace kq
