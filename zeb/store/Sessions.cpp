// The sessions in memory and in the store. Changes are committed without waiting for the disk: a session that
// is lost with the power costs its user a new login.
#include "zeb/store/Sessions.h"

#include <unordered_set>

#include "platform/Clock.h"
#include "platform/Crypto.h"
#include "platform/Machine.h"

namespace kq::zeb {
namespace {

constexpr std::size_t kIdBytes = 16;

}  // namespace

Sessions::Sessions(Store& store, PlatformPtr platform, const Rule& rule)
    : store_(store), platform_(std::move(platform)), rule_(rule) {
    auto query = store_.Use(
        "SELECT session_id, user_uid, app_id, server_type, server_subtype, connection, since FROM sessions");
    while (query.Next()) {
        Session session{query.Text(0), static_cast<std::int32_t>(query.Number(1)),
                        query.Text(2), {query.Text(3), query.Text(4)},
                        query.Text(5), query.Number(6)};
        by_user_[session.user_uid].insert(session.id);
        if (session.Registered()) {
            by_server_[session.server].insert(session.id);
            heard_[session.server] = Now();
        }
        sessions_.emplace(session.id, std::move(session));
    }
}

std::int64_t Sessions::Now() const {
    return std::chrono::duration_cast<std::chrono::seconds>(
               platform_->Parts().clock->Now().time_since_epoch())
        .count();
}

bool Sessions::Expired(const Session& session) const {
    if (!session.Registered()) return Now() - session.since > rule_.time_to_register.count();
    const auto heard = heard_.find(session.server);
    return heard == heard_.end() || Now() - heard->second > rule_.give_up.count();
}

Session Sessions::Issue(std::int32_t user_uid, const std::string& app_id) {
    Session session;
    session.id = platform_->Parts().crypto->RandomHex(kIdBytes);
    session.user_uid = user_uid;
    session.app_id = app_id;
    session.since = Now();
    store_.Use("INSERT INTO sessions (session_id, user_uid, app_id, since) VALUES (?1, ?2, ?3, ?4)")
        .Bind(1, session.id)
        .Bind(2, std::int64_t{user_uid})
        .Bind(3, app_id)
        .Bind(4, session.since)
        .Run();
    return session;
}

void Sessions::Add(Session session) {
    by_user_[session.user_uid].insert(session.id);
    const auto id = session.id;
    sessions_.emplace(id, std::move(session));
}

const Session* Sessions::Find(const std::string& id) const {
    const auto found = sessions_.find(id);
    if (found == sessions_.end() || Expired(found->second)) return nullptr;
    return &found->second;
}

// Within a transaction of the caller.
void Sessions::Move(Session& session, const BusAddress& server, const std::string& connection) {
    const auto now = Now();
    store_
        .Use(
            "UPDATE sessions SET server_type = ?2, server_subtype = ?3, connection = ?4, since = ?5 "
            "WHERE session_id = ?1")
        .Bind(1, session.id)
        .Bind(2, server.type)
        .Bind(3, server.subtype)
        .Bind(4, connection)
        .Bind(5, now)
        .Run();
    if (session.Registered()) by_server_[session.server].erase(session.id);
    session.server = server;
    session.connection = connection;
    session.since = now;
    if (session.Registered()) by_server_[server].insert(session.id);
}

void Sessions::Register(const std::string& id, const BusAddress& server, const std::string& connection) {
    const auto found = sessions_.find(id);
    if (found == sessions_.end() || server.Empty()) return;
    Store::Transaction transaction(store_, Store::Commit::Soon);
    Move(found->second, server, connection);
    transaction.Commit();
    heard_[server] = Now();
}

void Sessions::End(const std::string& id, const BusAddress& server) {
    const auto found = sessions_.find(id);
    if (found == sessions_.end() || server.Empty() || found->second.server != server) return;
    Store::Transaction transaction(store_, Store::Commit::Soon);
    Move(found->second, {}, found->second.connection);
    transaction.Commit();
}

void Sessions::EndAll(const BusAddress& server, const std::string& app_id) {
    const auto found = by_server_.find(server);
    if (found == by_server_.end()) return;
    const auto ids = found->second;
    Store::Transaction transaction(store_, Store::Commit::Soon);
    for (const auto& id : ids) {
        Session& session = sessions_.at(id);
        if (session.app_id == app_id) Move(session, {}, session.connection);
    }
    transaction.Commit();
}

void Sessions::Announced(const BusAddress& server, const std::string& app_id,
                         const std::vector<std::string>& ids) {
    if (server.Empty()) return;
    const std::unordered_set<std::string> listed(ids.begin(), ids.end());
    std::vector<Session*> ended;
    std::vector<Session*> begun;
    const auto here = by_server_.find(server);
    if (here != by_server_.end()) {
        for (const auto& id : here->second) {
            Session& session = sessions_.at(id);
            const bool settled = Now() - session.since > rule_.settle.count();
            if (settled && session.app_id == app_id && !listed.contains(id)) ended.push_back(&session);
        }
    }
    for (const auto& id : listed) {
        const auto found = sessions_.find(id);
        if (found == sessions_.end() || found->second.Registered() || found->second.app_id != app_id)
            continue;
        begun.push_back(&found->second);
    }
    if (!ended.empty() || !begun.empty()) {
        Store::Transaction transaction(store_, Store::Commit::Soon);
        for (auto* session : ended)
            Move(*session, {}, session->connection);
        for (auto* session : begun)
            Move(*session, server, session->connection);
        transaction.Commit();
    }
    if (by_server_.contains(server)) heard_[server] = Now();
}

std::int32_t Sessions::CountLive(std::int32_t user_uid, const std::string& except,
                                 const std::function<bool(const Session&)>& live) const {
    const auto found = by_user_.find(user_uid);
    if (found == by_user_.end()) return 0;
    std::int32_t count = 0;
    for (const auto& id : found->second) {
        const Session& session = sessions_.at(id);
        if (id != except && session.Registered() && live(session)) ++count;
    }
    return count;
}

void Sessions::Purge() {
    std::vector<std::string> gone;
    for (const auto& [id, session] : sessions_) {
        if (Expired(session)) gone.push_back(id);
    }
    if (!gone.empty()) {
        Store::Transaction transaction(store_, Store::Commit::Soon);
        for (const auto& id : gone) {
            store_.Use("DELETE FROM sessions WHERE session_id = ?1").Bind(1, id).Run();
        }
        transaction.Commit();
    }
    for (const auto& id : gone) {
        const auto found = sessions_.find(id);
        const Session& session = found->second;
        if (session.Registered()) by_server_[session.server].erase(id);
        const auto user = by_user_.find(session.user_uid);
        user->second.erase(id);
        if (user->second.empty()) by_user_.erase(user);
        sessions_.erase(found);
    }
    std::erase_if(by_server_, [](const auto& entry) { return entry.second.empty(); });
    std::erase_if(heard_, [this](const auto& entry) { return !by_server_.contains(entry.first); });
}

}  // namespace kq::zeb
