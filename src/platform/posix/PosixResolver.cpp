#include <arpa/inet.h>
#include <array>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "platform/net/NameLookup.h"
#include "platform/posix/PosixAddress.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

bool IsUsableName(const std::string& name) {
    return !name.empty() && name.find('\0') == std::string::npos;
}

bool IsDottedAddress(const std::string& text) {
    in_addr address{};
    return IsUsableName(text) && inet_pton(AF_INET, text.c_str(), &address) == 1;
}

class PosixNames final : public NameCalls {
 public:
    std::string LocalHostName() override {
        std::array<char, 256> name{};
        return gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : std::string();
    }

    std::optional<std::string> Numeric(const std::string& text) override {
        const auto address = ParseAddress(text, 0);
        return address ? std::optional(TextOf(*address)) : std::nullopt;
    }

    std::vector<std::string> Ask(const std::string& host, Family family) override {
        std::vector<std::string> found;
        if (!IsUsableName(host)) return found;
        addrinfo hints{};
        hints.ai_family = family == Family::IPv4 ? AF_INET : AF_INET6;
        hints.ai_socktype = SOCK_STREAM;
        addrinfo* first = nullptr;
        if (getaddrinfo(host.c_str(), nullptr, &hints, &first) != 0) return found;
        for (const addrinfo* entry = first; entry; entry = entry->ai_next) {
            std::string text = TextOf(AddressFrom(entry->ai_addr, entry->ai_addrlen));
            if (!text.empty()) found.push_back(std::move(text));
        }
        freeaddrinfo(first);
        return found;
    }

    std::string FirstIPv4(const std::string& host) override {
        if (IsDottedAddress(host)) return host;
        const auto found = Ask(host.empty() ? LocalHostName() : host, Family::IPv4);
        return found.empty() ? std::string() : found.front();
    }

    bool RunOnThread(std::function<void()> work) override {
        try {
            std::thread(std::move(work)).detach();
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }
};

}  // namespace

std::shared_ptr<Resolver> MakePosixResolver(std::shared_ptr<EventLoop> loop) {
    return MakeNameLookup(std::make_shared<PosixNames>(), std::move(loop));
}

}  // namespace kq
