// "ASValidateClientRequest": is there a server for this client's interface version?
//
// Nobody has logged in yet, so no host name is resolved. A restriction to a host name is treated as a
// restriction to its port alone; the login checks the host too.
#include "base/Convert.h"
#include "zeb/requests/ClientRequests.h"

namespace kq::zeb {

void ClientRequests::ValidateClient(const XMLMessage& message, const PeerPtr& peer) {
    using Response = ASValidateClientResponse;
    Guard<Response>(peer, [&] {
        const auto request = ASValidateClientRequest::Read(message);
        const std::int32_t port = ValLong(request.RestrictPort);
        auto restriction = KnownRestriction(*peer, request.RestrictIP, port);
        if (!restriction) restriction = KnownRestriction(*peer, {}, port);
        Response response;
        SetOutcome(response, Refusal::None);
        // There are no client packages to offer, so none is newer than the client.
        response.ClientAvailable = TextOf(false);
        response.InterfaceAvailable =
            TextOf(services_.servers.Serves(request.AppID, request.InterfaceVersion, *restriction));
        services_.log.info("Validation of {} {} for {}: {}", ForLog(request.AppID),
                           ForLog(request.InterfaceVersion), peer->Name(), response.InterfaceAvailable);
        peer->Answer(response.Build());
    });
}

}  // namespace kq::zeb
