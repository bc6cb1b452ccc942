// A block that is no message is told apart from a message of another type: texts 500 and 501.
#include "client/LoginExchange.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "client/ClientState.h"
#include "client/ClientTexts.h"
#include "messages/ParseASData.h"
#include "messages/TextIds.h"

namespace kq {

namespace {

// What stands for a reply that did not come.
Received NoReply(Procedure& procedure, const Error& error) {
    procedure.Note(error.Number());
    Received none;
    none.failure = procedure.UserTexts().ForUser(error);
    return none;
}

}  // namespace

Received TakeAny(Procedure& procedure, APClient& client, std::string_view awaited_type,
                 std::int32_t time_out) {
    Received reply;
    Block block;
    try {
        block = client.TakeBlock(time_out);
    } catch (const Error& error) {
        return NoReply(procedure, error);
    }
    if (block.data.empty()) {
        reply.failure = ClientText(ClientSentence::EmptyReply, procedure.UserTexts());
        return reply;
    }
    reply.received = true;
    reply.message = ParseASData(block.data).Message();
    if (!reply.message) {
        reply.improper = TextId::kUnknownResponse;
    } else if (reply.message->Type() != awaited_type) {
        reply.improper = TextId::kImproperResponse;
    }
    return reply;
}

Received ExchangeAny(Procedure& procedure, APClient& client, const XMLMessage& request,
                     std::string_view awaited_type, std::int32_t time_out) {
    try {
        client.SendText(request.ToXML());
    } catch (const Error& error) {
        return NoReply(procedure, error);
    }
    procedure.Pause(kLoginPause);
    return TakeAny(procedure, client, awaited_type, time_out);
}

ReplyError ReadReplyError(const std::string& error_number) {
    if (error_number.empty() || error_number == "0") return {};
    return {true, ReceivedValLong(error_number)};
}

std::string ZEBFailureText(const Texts& texts, const std::string& error_desc,
                           const std::string& error_param) {
    for (const std::string& code : {error_param, error_desc}) {
        if (std::string text = texts.MapZEBError(code); text != code) return text;
    }
    return error_desc.empty() ? error_param : error_desc;
}

}  // namespace kq
