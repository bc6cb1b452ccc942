// What only the library does with session records and their collection; programs read them.
#pragma once

#include <memory>
#include <string>

#include <kqappsession/KQAppSessionInfo.h>

namespace kq {

class SessionRecords {
 public:
    using SessionPtr = KQAppSessionInfos::SessionPtr;

    // Keeps `message`, and `client` unless it is null. Writes the ids and the password into the message where
    // they are not empty; RuntimeError::ObjectNotSet when there is no message to write them into.
    static void Fill(KQAppSessionInfo& session, std::shared_ptr<XMLMessage> message,
                     const std::string& session_id = {}, const std::string& app_id = {},
                     std::shared_ptr<APClient> client = nullptr, const std::string& password = {});
    // Replaces the connection, by null too.
    static void SetClient(KQAppSessionInfo& session, std::shared_ptr<APClient> client);

    // Adds the session under the id that it has now, and returns it. Raises RuntimeError::DuplicateKey for a
    // second session of the same id, RuntimeError::ObjectNotSet for null and for a record that is not filled.
    static SessionPtr Add(KQAppSessionInfos& sessions, SessionPtr session);
    // RuntimeError::InvalidProcedureCall for an id under which no session was added.
    static void Remove(KQAppSessionInfos& sessions, const std::string& session_id);
};

}  // namespace kq
