// The record of one session, on both sides: what the login server reported about it, and its connection.
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

// Every property is read from the login server's message when it is asked for; nothing is copied. Reading a
// property of a record that was never filled raises RuntimeError::ObjectNotSet. A field that the message does
// not have reads as empty text.
class KQ_EXPORT KQAppSessionInfo {
 public:
    std::string AppID() const { return Field("AppID"); }
    std::string SessionID() const { return Field("SessionID"); }
    std::string LoginID() const { return Field("LoginID"); }
    std::string FirstName() const { return Field("FirstName"); }
    std::string LastName() const { return Field("LastName"); }
    // RuntimeError::TypeMismatch if it is missing or not a number, Overflow beyond 32 bits.
    std::int32_t UserUID() const;
    // On an application server EnterpriseID is XMLBusClient::EnterpriseID, and OperatorID is the user's
    // number.
    std::string EnterpriseID() const { return Field("EnterpriseID"); }
    std::string OperatorID() const { return Field("OperatorID"); }
    // Language, time zone, daylight saving time and business unit: texts as they were entered at the login
    // server, in no fixed format. zebd gives the language as a decimal locale identifier.
    std::string Language() const { return Field("Language"); }
    std::string TZ() const { return Field("TZ"); }
    std::string DST() const { return Field("DST"); }
    std::string BUID() const { return Field("BUID"); }
    // All business units and all privileges of the user: the fields "BUIDUnionList" and "PrivilegeList",
    // split at every "|". Pieces are not trimmed; an empty field gives one empty element.
    std::vector<std::string> BUIDList() const;
    std::vector<std::string> PrivilegeList() const;
    // The session's connection, null when there is none. A client's record has the connection to the login
    // server after a system login, and the one to the application server after a server login. Does not need
    // a filled record.
    const std::shared_ptr<APClient>& Client() const { return client_; }
    // The message itself, not a copy: changing it changes the record. Null before the record is filled.
    const std::shared_ptr<XMLMessage>& Export() const { return message_; }
    // The field "Password": empty unless the login server reports one.
    std::string Password() const { return Field("Password"); }
    bool IsInitialized() const { return initialized_; }

 private:
    friend class SessionRecords;  // the library's: fills the record

    std::string Field(std::string_view name) const;

    std::shared_ptr<XMLMessage> message_;
    std::shared_ptr<APClient> client_;
    bool initialized_ = false;
};

// The live sessions of an application server, oldest first. The key is the session id at the time when the
// session was added. Adding, removing and finding a session by its id take the same time however many
// sessions there are. Belongs to the loop's thread.
class KQ_EXPORT KQAppSessionInfos {
 public:
    using SessionPtr = std::shared_ptr<KQAppSessionInfo>;

    // By session id or by position, from 1. RuntimeError::InvalidProcedureCall when there is no such session.
    SessionPtr Session(const std::string& session_id) const;
    SessionPtr Session(std::int32_t position) const;
    bool Exists(const std::string& session_id) const;
    std::int32_t Count() const;
    // A snapshot, for iterating while sessions are added and removed.
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
