// The record of one session, on both sides: what the login server said of it and the connection it lives on.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <kqappsession/APClient.h>
#include <kqappsession/Export.h>
#include <kqappsession/XMLMessage.h>

namespace kq {

// Reads every property out of the message that the login server returned for the session, at the moment it is
// asked; nothing is copied. Reading a property of a record that was never filled raises
// RuntimeError::ObjectNotSet; a field that the message lacks reads as empty text.
class KQ_EXPORT KQAppSessionInfo {
 public:
    std::string AppID() const { return Field("AppID"); }
    std::string SessionID() const { return Field("SessionID"); }
    std::string LoginID() const { return Field("LoginID"); }
    std::string FirstName() const { return Field("FirstName"); }
    std::string LastName() const { return Field("LastName"); }
    std::int32_t UserUID() const;  // RuntimeError::TypeMismatch when it is no number, absence included
    std::string EnterpriseID() const { return Field("EnterpriseID"); }
    std::string OperatorID() const { return Field("OperatorID"); }
    std::string Language() const { return Field("Language"); }
    std::string TZ() const { return Field("TZ"); }
    std::string DST() const { return Field("DST"); }
    std::string BUID() const { return Field("BUID"); }
    // The field "BUIDUnionList" split at every "|"; an empty field gives one empty element.
    std::vector<std::string> BUIDList() const;
    std::vector<std::string> PrivilegeList() const;
    // The session's connection; may be null. Needs no filled record.
    const std::shared_ptr<APClient>& Client() const { return client_; }
    // The message itself, not a copy: what is changed in it changes the record. Null before the record is
    // filled.
    const std::shared_ptr<XMLMessage>& Export() const { return message_; }
    std::string Password() const { return Field("Password"); }
    bool IsInitialized() const { return initialized_; }

 private:
    friend class SessionRecords;  // the library's: fills the record

    std::string Field(std::string_view name) const;

    std::shared_ptr<XMLMessage> message_;
    std::shared_ptr<APClient> client_;
    bool initialized_ = false;
};

// The live sessions of an application server, in the order of their coming, keyed by session id as it was
// when the session was added. Adding, removing and finding one by its id do not slow down with many sessions.
class KQ_EXPORT KQAppSessionInfos {
 public:
    using SessionPtr = std::shared_ptr<KQAppSessionInfo>;

    // RuntimeError::InvalidProcedureCall when there is no such session. Positions count from 1.
    SessionPtr Session(const std::string& session_id) const;
    SessionPtr Session(std::int32_t position) const;
    bool Exists(const std::string& session_id) const;
    std::int32_t Count() const;
    // A snapshot to iterate over while sessions come and go.
    std::vector<SessionPtr> All() const;

 private:
    friend class SessionRecords;  // the library's: adds and removes sessions

    const std::vector<SessionPtr>& InOrder() const;

    std::unordered_map<std::string, std::uint64_t> numbers_;  // by session id
    std::map<std::uint64_t, SessionPtr> sessions_;            // by number; numbers rise with every Add
    std::uint64_t last_number_ = 0;
    // The sessions once more, for positions; empty: to be made anew.
    mutable std::vector<SessionPtr> in_order_;
};

}  // namespace kq
