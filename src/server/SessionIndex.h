// The two ways from a client connection to its session and back, each O(1).
//
// They are kept apart on purpose: a step that fails in one (a second session of the same id, a second
// registration on the same connection) leaves the other as it is.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <unordered_map>

#include <kqappsession/KQAppSessionInfo.h>

namespace kq {

class SessionIndex {
 public:
    using SessionPtr = std::shared_ptr<KQAppSessionInfo>;
    using ClientPtr = std::shared_ptr<APClient>;

    // The sessions, by their connection's identifier. A second one raises RuntimeError::DuplicateKey and
    // changes nothing; removing what is not there raises RuntimeError::InvalidProcedureCall.
    void AddSession(const std::string& client_identifier, SessionPtr session);
    SessionPtr SessionOf(const std::string& client_identifier) const;  // null when there is none
    void RemoveSession(const std::string& client_identifier);
    // In the order of their coming.
    const std::list<SessionPtr>& Sessions() const { return sessions_; }

    // The connections, by their session's id; the same errors.
    void AddClient(const std::string& session_id, ClientPtr client);
    ClientPtr ClientOf(const std::string& session_id) const;  // null when there is none
    void RemoveClient(const std::string& session_id);

    void Clear();

 private:
    std::list<SessionPtr> sessions_;
    std::unordered_map<std::string, std::list<SessionPtr>::iterator> by_client_;
    std::unordered_map<std::string, ClientPtr> by_session_;
};

}  // namespace kq
