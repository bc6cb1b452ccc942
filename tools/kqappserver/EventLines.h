// The lines that kqappserver writes: one for each event, whatever its texts contain.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/KQAppSessionInfo.h>

namespace kq {

// "Connected session=S17 user=ann"; event: Connected or Disconnected.
std::string SessionLine(std::string_view event, const KQAppSessionInfo& session);
// "ReceivedData session=S17 type=KQAppMessage bytes=80 Text="Hello""; Text only if the message has that
// field.
std::string ReceivedDataLine(const KQAppSessionInfo& session, const Block& block);
// "Error 10054 The connection was reset."
std::string ErrorEventLine(std::string_view event, std::int32_t number, std::string_view description);
// "XMLBusReceive ASRegistrationResponse", and " error=7 "..."" when it is a refusal.
std::string BusLine(std::string_view event, const XMLMessage& message, std::int32_t number = 0,
                    std::string_view description = {});
// "Sessions 1", then for each "Session session=S17 user=ann name="Ann Lee" client=127.0.0.1:40001".
std::vector<std::string> SessionsLines(const KQAppSessionInfos& sessions);

}  // namespace kq
