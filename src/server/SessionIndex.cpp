// The sessions stand in a list, which keeps their order; the map by connection points into it.
#include "server/SessionIndex.h"

#include <utility>

#include <kqappsession/Error.h>

namespace kq {

void SessionIndex::AddSession(const std::string& client_identifier, SessionPtr session) {
    if (by_client_.contains(client_identifier)) Raise(RuntimeError::DuplicateKey);
    by_client_.emplace(client_identifier, sessions_.insert(sessions_.end(), std::move(session)));
}

SessionIndex::SessionPtr SessionIndex::SessionOf(const std::string& client_identifier) const {
    const auto found = by_client_.find(client_identifier);
    return found == by_client_.end() ? nullptr : *found->second;
}

void SessionIndex::RemoveSession(const std::string& client_identifier) {
    const auto found = by_client_.find(client_identifier);
    if (found == by_client_.end()) Raise(RuntimeError::InvalidProcedureCall);
    sessions_.erase(found->second);
    by_client_.erase(found);
}

void SessionIndex::AddClient(const std::string& session_id, ClientPtr client) {
    if (!by_session_.emplace(session_id, std::move(client)).second) Raise(RuntimeError::DuplicateKey);
}

SessionIndex::ClientPtr SessionIndex::ClientOf(const std::string& session_id) const {
    const auto found = by_session_.find(session_id);
    return found == by_session_.end() ? nullptr : found->second;
}

void SessionIndex::RemoveClient(const std::string& session_id) {
    if (by_session_.erase(session_id) == 0) Raise(RuntimeError::InvalidProcedureCall);
}

void SessionIndex::Clear() {
    by_client_.clear();
    by_session_.clear();
    sessions_.clear();
}

}  // namespace kq
