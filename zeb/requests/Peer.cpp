// The two ways to answer a client.
#include "zeb/requests/Peer.h"

#include <kqappsession/Error.h>

#include "messages/ASMessages.h"
#include "tools/program/OneLine.h"
#include "zeb/store/Services.h"

namespace kq::zeb {

std::string ForLog(std::string_view text) {
    return ShortLine(text);
}

void DirectPeer::Answer(const XMLMessage& answer) {
    try {
        client_->Send(answer, tag_);
    } catch (const Error&) {
        // Gone, or it reads nothing and was closed for that.
    }
}

RelayedPeer::RelayedPeer(const XMLMessage& request, std::function<void(const XMLMessage&)> send_on_bus)
    : reply_{request.Field(kReturnMsgType), request.Field(kReturnSubType)},
      trans_id_(request.Field(kTransID)),
      tag_(request.Field(kReturnTag)),
      send_on_bus_(std::move(send_on_bus)) {}

void RelayedPeer::Answer(const XMLMessage& answer) {
    auto message = answer.ToBusMessage(kZEBSchemas);
    message.SetField(kTransID, trans_id_);
    if (!tag_.empty()) message.SetField(kReturnTag, tag_);
    message.SetDestination(reply_);
    send_on_bus_(message);
}

std::string RelayedPeer::Name() const {
    return ForLog(reply_.type) + "/" + ForLog(reply_.subtype) + " " + ForLog(trans_id_);
}

}  // namespace kq::zeb
