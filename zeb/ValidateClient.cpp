// "ASValidateClientRequest": is there a server for this client's interface version?
#include "base/Convert.h"
#include "zeb/ClientRequests.h"

namespace kq::zeb {

void ClientRequests::ValidateClient(const XMLMessage& message, const PeerPtr& peer) {
    using Response = ASValidateClientResponse;
    Guard<Response>(peer, [&] {
        const auto request = ASValidateClientRequest::Read(message);
        const bool taken = ReadRestriction(
            peer, request.RestrictIP, request.RestrictPort, [=, this](const Restriction& restriction) {
                Guard<Response>(peer, [&] {
                    Response response;
                    SetOutcome(response, Refusal::None);
                    // There are no client packages to offer, so none is newer than the client.
                    response.ClientAvailable = TextOf(false);
                    response.InterfaceAvailable = TextOf(
                        services_.servers.Serves(request.AppID, request.InterfaceVersion, restriction));
                    services_.log.info("Validation of {} {} for {}: {}", ForLog(request.AppID),
                                       ForLog(request.InterfaceVersion), peer->Name(),
                                       response.InterfaceAvailable);
                    peer->Answer(response.Build());
                });
            });
        if (!taken) Refuse<Response>(peer, Refusal::Busy);
    });
}

}  // namespace kq::zeb
