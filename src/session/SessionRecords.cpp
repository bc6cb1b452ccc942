// How session records are filled, and how their collection changes.
#include "session/SessionRecords.h"

#include <utility>

#include <kqappsession/Error.h>

namespace kq {

void SessionRecords::Fill(KQAppSessionInfo& session, std::shared_ptr<XMLMessage> message,
                          const std::string& session_id, const std::string& app_id,
                          std::shared_ptr<APClient> client, const std::string& password) {
    session.message_ = std::move(message);
    if (client) session.client_ = std::move(client);
    const auto write = [&session](std::string_view name, const std::string& value) {
        if (value.empty()) return;
        if (!session.message_) Raise(RuntimeError::ObjectNotSet);
        session.message_->SetField(name, value);
    };
    write("SessionID", session_id);
    write("AppID", app_id);
    write("Password", password);
    session.initialized_ = true;
}

void SessionRecords::SetClient(KQAppSessionInfo& session, std::shared_ptr<APClient> client) {
    session.client_ = std::move(client);
}

SessionRecords::SessionPtr SessionRecords::Add(KQAppSessionInfos& sessions, SessionPtr session) {
    if (!session) Raise(RuntimeError::ObjectNotSet);
    const std::uint64_t number = sessions.last_number_ + 1;
    if (!sessions.numbers_.emplace(session->SessionID(), number).second) Raise(RuntimeError::DuplicateKey);
    sessions.last_number_ = number;
    if (!sessions.in_order_.empty()) sessions.in_order_.push_back(session);
    return sessions.sessions_.emplace(number, std::move(session)).first->second;
}

void SessionRecords::Remove(KQAppSessionInfos& sessions, const std::string& session_id) {
    const auto number = sessions.numbers_.find(session_id);
    if (number == sessions.numbers_.end()) Raise(RuntimeError::InvalidProcedureCall);
    sessions.sessions_.erase(number->second);
    sessions.numbers_.erase(number);
    sessions.in_order_.clear();
}

}  // namespace kq
