// The sessions that this server has issued.
//
// A session waits to be registered with an application server, is registered, and waits again when it has
// ended there, since a client whose connection broke registers the same session again. One that waits longer
// than the time to register is gone for ever. All sessions are kept in memory and every change in the store,
// so that they outlive a restart.
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
        // A list that an application server sent before it heard of a registration lacks that session.
        std::chrono::seconds settle{60};
        // Registered sessions of an application server that was not heard for so long are given up.
        std::chrono::seconds give_up{24 * 60 * 60};
    };
    Sessions(Store& store, PlatformPtr platform, const Rule& rule);

    // Stores a new session within a transaction of the caller; its id is 32 hexadecimal digits, random. Once
    // that is committed, Add makes the session known.
    Session Issue(std::int32_t user_uid, const std::string& app_id);
    void Add(Session session);
    // Null when it is unknown or its time to register has passed. Valid until the next change.
    const Session* Find(const std::string& id) const;
    // A registered session moves to the new place.
    void Register(const std::string& id, const BusAddress& server, const std::string& connection);
    // The session has ended on that server; nothing happens when it is registered elsewhere.
    void End(const std::string& id, const BusAddress& server);
    void EndAll(const BusAddress& server, const std::string& app_id);
    // The complete list of a server's sessions of an application: those it lacks have ended, those that wait
    // are registered there.
    void Announced(const BusAddress& server, const std::string& app_id, const std::vector<std::string>& ids);
    // How many registered sessions of the user `live` accepts, `except` left out.
    std::int32_t CountLive(std::int32_t user_uid, const std::string& except,
                           const std::function<bool(const Session&)>& live) const;
    // Removes what is gone.
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
    std::map<BusAddress, std::int64_t> heard_;  // servers with sessions: when they last said something
};

}  // namespace kq::zeb
