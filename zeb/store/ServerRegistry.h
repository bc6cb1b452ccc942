// The application servers that have announced themselves: what they serve and how busy they are.
//
// The key of a server is its reply address, which no other process on the bus has, and its application, since
// one process may serve several. A server is removed when it sends "D", when another one announces itself at
// its address and port, or when it is silent for longer than three of its announcement intervals. It is not
// used while its connection to the bus is known to be lost.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/EventLoop.h>
#include <kqappsession/XMLMessage.h>

#include "messages/ASMessages.h"

namespace kq::zeb {

struct ApplicationServer {
    BusAddress reply;
    std::string app_id;
    std::string address;
    std::int32_t port = 0;
    Milliseconds interval{0};  // 0 or less: announces itself only when something changes or it is asked
    std::vector<std::string> interface_versions;
    std::set<std::string> sessions;
    std::int32_t promised = 0;  // logins that were sent there since its last session list
    EventLoop::TimePoint heard;
    bool off_the_bus = false;  // its connection to the bus is lost

    std::size_t Load() const { return sessions.size() + static_cast<std::size_t>(promised); }
};

// The servers that a client may be sent to. Empty: all.
struct Restriction {
    std::set<std::string> addresses;
    std::int32_t port = 0;

    bool Allows(const ApplicationServer& server) const {
        return (addresses.empty() || addresses.contains(server.address)) &&
               (port == 0 || port == server.port);
    }
};

class ServerRegistry {
 public:
    static constexpr Milliseconds kSlack{5'000};
    // Used as the interval of a server that has none; such a server has to be asked at least this often.
    static constexpr Milliseconds kAskInterval{60'000};
    static constexpr Milliseconds kMaxInterval{24 * 60 * 60 * 1'000};
    static constexpr std::size_t kMaxServers = 4'096;
    // How long an announcement may have been on its way when its sender's connection was lost.
    static constexpr Milliseconds kOnTheWay{60'000};

    explicit ServerRegistry(std::shared_ptr<EventLoop> loop) : loop_(std::move(loop)) {}

    struct Arrival {
        bool fresh = false;                       // it was unknown
        std::vector<ApplicationServer> replaced;  // the servers at its address and port, now removed
    };
    // "C": the server is available and these are its sessions. `port`: its port as a number.
    Arrival Announced(const BusAddress& reply, const ApplicationInfo& application, std::int32_t port);
    // The connection behind a reply address was lost, or is open again. Returns the servers whose state this
    // has changed.
    std::vector<ApplicationServer> Reachable(const BusAddress& reply, bool there);
    // "E" of a known server; an unknown one stays unknown.
    void SessionEnded(const BusAddress& reply, const std::string& app_id, const std::string& session_id);
    void Left(const BusAddress& reply, const std::string& app_id);
    // Removes the silent ones and returns them.
    std::vector<ApplicationServer> DropSilent();

    bool IsLive(const BusAddress& reply, const std::string& app_id) const;
    bool Serves(const std::string& app_id, const std::string& interface_version,
                const Restriction& restriction) const;
    // The port of the least busy server for the application; its load is increased by one. Nothing when there
    // is no such server.
    std::optional<std::int32_t> ChoosePort(const std::string& app_id, const Restriction& restriction);
    bool HasServerFor(const std::string& app_id, const Restriction& restriction) const;
    // Whether some server announces itself only when asked.
    bool SomeMustBeAsked() const;
    std::size_t Count() const { return servers_.size(); }

 private:
    using Key = std::pair<BusAddress, std::string>;  // reply address and application

    bool Silent(const ApplicationServer& server) const;
    bool Usable(const ApplicationServer& server) const { return !server.off_the_bus && !Silent(server); }
    std::vector<ApplicationServer> RemoveOthersAt(const Key& key, const std::string& address,
                                                  std::int32_t port);

    std::shared_ptr<EventLoop> loop_;
    std::map<Key, ApplicationServer> servers_;
    // Reply addresses whose connection was lost recently: earlier announcements may still arrive.
    std::map<BusAddress, EventLoop::TimePoint> lost_;
};

}  // namespace kq::zeb
