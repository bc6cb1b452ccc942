// What the login server has been asked for clients and has not answered yet.
//
// An answer of the bus counts only when it answers one of these, and each of them is answered once. What a
// client may have open is limited, so that the requests of a few clients cannot fill the queue of a bus that
// is away.
#pragma once

#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <kqappsession/EventLoop.h>

namespace kq {

struct OpenRequest {
    std::string client;           // the identifier of the connection that asked
    std::string_view answer;      // the type of the message that answers it; a constant
    std::string session_id = {};  // of a registration
    std::string tag = {};         // of the client's request
    std::size_t bytes = 0;        // of the client's request
    EventLoop::TimePoint since = {};
};

class OpenRequests {
 public:
    struct Limits {
        std::size_t requests = 64;            // of one connection
        std::size_t bytes = 2U << 20;         // of one connection; the first request may be larger
        std::size_t total_bytes = 32U << 20;  // of all connections
    };

    // False when the connection, or all of them, would have too much open. Requests come in the order of
    // their times.
    bool Add(OpenRequest request);
    // Closes the request that an answer answers: the oldest of this connection, answer type, session id and
    // tag. With no tag, because the login server has not returned it, the oldest with any tag when there is
    // none without.
    std::optional<OpenRequest> Take(const std::string& client, std::string_view answer,
                                    const std::string& session_id, const std::string& tag_element);
    bool Has(const std::string& client) const { return clients_.contains(client); }
    // The connection has ended.
    void Forget(const std::string& client);

    // When the oldest one was asked.
    std::optional<EventLoop::TimePoint> Oldest() const;
    // Closes all that were asked at this time or before, oldest first.
    std::vector<OpenRequest> TakeUntil(EventLoop::TimePoint time);

 private:
    using Requests = std::list<OpenRequest>;
    struct Client {
        std::vector<Requests::iterator> requests;  // oldest first
        std::size_t bytes = 0;
    };

    OpenRequest Remove(Requests::iterator request);

    const Limits limits_;
    Requests requests_;  // oldest first
    std::unordered_map<std::string, Client> clients_;
    std::size_t bytes_ = 0;
};

// A tag as the text of an element: everything but printable ASCII, and "%", is written as "%" and two
// hexadecimal digits, since a tag may hold what XML cannot carry.
std::string TagElementText(std::string_view tag);

}  // namespace kq
