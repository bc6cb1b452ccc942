#include "server/OpenRequests.h"

#include <algorithm>
#include <utility>

namespace kq {

bool OpenRequests::Add(OpenRequest request) {
    auto& client = clients_[request.client];
    const bool first = client.requests.empty();
    const bool too_much = client.requests.size() >= limits_.requests ||
                          (!first && client.bytes + request.bytes > limits_.bytes) ||
                          bytes_ + request.bytes > limits_.total_bytes;
    if (too_much) {
        if (first) clients_.erase(request.client);
        return false;
    }
    client.bytes += request.bytes;
    bytes_ += request.bytes;
    client.requests.push_back(requests_.insert(requests_.end(), std::move(request)));
    return true;
}

std::optional<OpenRequest> OpenRequests::Take(const std::string& client, std::string_view answer,
                                              const std::string& session_id, const std::string& tag_element) {
    const auto found = clients_.find(client);
    if (found == clients_.end()) return std::nullopt;
    const auto& requests = found->second.requests;
    const auto answered = [&](const Requests::iterator& request) {
        return request->answer == answer && request->session_id == session_id;
    };
    auto match = std::ranges::find_if(requests, [&](const auto& request) {
        return answered(request) && TagElementText(request->tag) == tag_element;
    });
    if (match == requests.end() && tag_element.empty()) match = std::ranges::find_if(requests, answered);
    if (match == requests.end()) return std::nullopt;
    return Remove(*match);
}

void OpenRequests::Forget(const std::string& client) {
    const auto found = clients_.find(client);
    if (found == clients_.end()) return;
    for (const auto& request : std::vector(found->second.requests))
        Remove(request);
}

std::optional<EventLoop::TimePoint> OpenRequests::Oldest() const {
    if (requests_.empty()) return std::nullopt;
    return requests_.front().since;
}

std::vector<OpenRequest> OpenRequests::TakeUntil(EventLoop::TimePoint time) {
    std::vector<OpenRequest> taken;
    while (!requests_.empty() && requests_.front().since <= time)
        taken.push_back(Remove(requests_.begin()));
    return taken;
}

OpenRequest OpenRequests::Remove(Requests::iterator request) {
    const auto client = clients_.find(request->client);
    client->second.bytes -= request->bytes;
    bytes_ -= request->bytes;
    std::erase(client->second.requests, request);
    if (client->second.requests.empty()) clients_.erase(client);
    OpenRequest removed = std::move(*request);
    requests_.erase(request);
    return removed;
}

std::string TagElementText(std::string_view tag) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const char c : tag) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && byte < 0x7F && c != '%') {
            text += c;
        } else {
            text += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return text;
}

}  // namespace kq
