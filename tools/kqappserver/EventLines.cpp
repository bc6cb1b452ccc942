#include "tools/kqappserver/EventLines.h"

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "tools/JsonText.h"
#include "tools/program/OneLine.h"

namespace kq {
namespace {

std::string Named(std::string_view name, std::string_view value) {
    return " " + std::string(name) + "=" + OneLine(value);
}

}  // namespace

std::string SessionLine(std::string_view event, const KQAppSessionInfo& session) {
    return std::string(event) + Named("session", session.SessionID()) + Named("user", session.LoginID());
}

std::string ReceivedDataLine(const KQAppSessionInfo& session, const Block& block) {
    std::string line = "ReceivedData" + Named("session", session.SessionID());
    XMLMessage message;
    try {
        message.LoadXML(block.data);
    } catch (const Error& error) {
        return line + Named("bytes", std::to_string(block.data.size())) + " " +
               JsonString(error.Description());
    }
    line += Named("type", message.Type()) + Named("bytes", std::to_string(block.data.size()));
    if (message.HasField("Text")) line += " Text=" + JsonString(message.Field("Text"));
    return line;
}

std::string ErrorEventLine(std::string_view event, std::int32_t number, std::string_view description) {
    return std::string(event) + " " + std::to_string(number) + " " + OneLine(description);
}

std::string BusLine(std::string_view event, const XMLMessage& message, std::int32_t number,
                    std::string_view description) {
    std::string line = std::string(event) + " " + OneLine(message.Type());
    if (number != 0 || !description.empty()) {
        line += Named("error", std::to_string(number)) + " " + JsonString(description);
    }
    return line;
}

std::vector<std::string> SessionsLines(const KQAppSessionInfos& sessions) {
    std::vector<std::string> lines{"Sessions " + std::to_string(sessions.Count())};
    for (const auto& session : sessions.All()) {
        std::string line = SessionLine("Session", *session);
        line += " name=" + JsonString(Trim(session->FirstName() + " " + session->LastName()));
        if (const auto& client = session->Client()) {
            line += Named("client", AddressAndPort(client->RemoteAddress(), client->RemotePort()));
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace kq
