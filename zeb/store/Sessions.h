// The sessions that this server has issued.
//
// A session has to be registered with an application server within the time to register. When it ends there
// it may be registered again within the same time, because a client that lost its connection registers the
// same session again. After that time it is removed. All sessions are kept in memory, and every change is
// stored, so that they outlive a restart.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <kqappsession/Platform.h>
#include <kqappsession/XMLMessage.h>

#include "zeb/store/Store.h"

namespace kq::zeb {

struct Session {
    std::string id;
    std::int32_t user_uid = 0;
    std::string app_id;
    BusAddress server;       // the reply address of the application server; empty: not registered
    std::string connection;  // how a server named the last registration, to recognise it when it asks again
    std::int64_t since = 0;  // seconds since 1970: registered, or issued or ended

    bool Registered() const { return !server.Empty(); }
};

class Sessions {
 public:
    struct Rule {
        std::chrono::seconds time_to_register{10 * 60};
        // A session list that an application server sent before it received a registration does not contain
        // that session.
        std::chrono::seconds settle{60};
        // Registered sessions of an application server that has sent nothing for so long are removed.
        std::chrono::seconds give_up{24 * 60 * 60};
    };
    Sessions(Store& store, PlatformPtr platform, const Rule& rule);

    // Stores a new session within a transaction of the caller; its id is 32 random hexadecimal digits. Call
    // Add after the commit.
    Session Issue(std::int32_t user_uid, const std::string& app_id);
    void Add(Session session);
    // Null when it is unknown or its time to register has passed. Valid until the next change.
    const Session* Find(const std::string& id) const;
    // A session that is registered elsewhere is registered at the new place instead.
    void Register(const std::string& id, const BusAddress& server, const std::string& connection);
    // The session has ended on that server. Does nothing when it is registered elsewhere.
    void End(const std::string& id, const BusAddress& server);
    void EndAll(const BusAddress& server, const std::string& app_id);
    // The complete list of a server's sessions of an application. Sessions that it does not contain have
    // ended; sessions that wait for their registration are registered there.
    void Announced(const BusAddress& server, const std::string& app_id, const std::vector<std::string>& ids);
    // The number of registered sessions of the user that `live` accepts, without `except`.
    std::int32_t CountLive(std::int32_t user_uid, const std::string& except,
                           const std::function<bool(const Session&)>& live) const;
    // Removes the sessions whose time has passed.
    void Purge();
    std::size_t Count() const { return sessions_.size(); }

 private:
    std::int64_t Now() const;
    bool Expired(const Session& session) const;
    void Move(Session& session, const BusAddress& server, const std::string& connection);

    Store& store_;
    PlatformPtr platform_;
    Rule rule_;
    std::unordered_map<std::string, Session> sessions_;
    std::map<BusAddress, std::set<std::string>> by_server_;
    std::unordered_map<std::int32_t, std::set<std::string>> by_user_;
    std::map<BusAddress, std::int64_t> heard_;  // servers with sessions: when they last sent something
};

}  // namespace kq::zeb
