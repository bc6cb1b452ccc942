#include <algorithm>
#include <array>
#include <utility>

#include "platform/net/NameLookup.h"
#include "platform/win32/Win32Module.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"
#include "platform/win32/Winsock.h"

namespace kq {
namespace {

class Win32Names final : public NameCalls {
 public:
    std::string LocalHostName() override {
        std::array<char, 256> name{};
        const bool known = gethostname(name.data(), static_cast<int>(name.size()) - 1) == 0;
        return known ? FromAnsi(name.data()) : std::string();
    }

    std::optional<std::string> Numeric(const std::string& text) override {
        const auto address = ParseAddress(text, 0);
        return address ? std::optional(TextOf(*address)) : std::nullopt;
    }

    // The wide call is the one that takes every name.
    std::vector<std::string> Ask(const std::string& host, Family family) override {
        std::vector<std::string> found;
        if (host.empty() || HoldsNul(host)) return found;
        ADDRINFOW hints{};
        hints.ai_family = family == Family::IPv4 ? AF_INET : AF_INET6;
        hints.ai_socktype = SOCK_STREAM;
        ADDRINFOW* first = nullptr;
        if (GetAddrInfoW(ToWide(host).c_str(), nullptr, &hints, &first) != 0) return found;
        for (const ADDRINFOW* entry = first; entry; entry = entry->ai_next) {
            std::string text = TextOf(AddressFrom(entry->ai_addr, entry->ai_addrlen));
            if (!text.empty()) found.push_back(std::move(text));
        }
        FreeAddrInfoW(first);
        return found;
    }

    // A dotted address passes through the system's resolver; an empty name is the local host's.
    std::string FirstIPv4(const std::string& host) override {
        if (!winsock_.Started() || HoldsNul(host)) return {};
        const hostent* const entry = gethostbyname(ToAnsi(host).c_str());
        if (!entry || entry->h_addrtype != AF_INET || !entry->h_addr_list[0]) return {};
        in_addr address{};
        std::copy_n(entry->h_addr_list[0], sizeof address, reinterpret_cast<char*>(&address));
        const char* const text = inet_ntoa(address);
        return text ? text : "";
    }

    bool RunOnThread(std::function<void()> work) override { return RunOnWorkerThread(std::move(work)); }

 private:
    WinsockSession winsock_;
};

}  // namespace

std::shared_ptr<Resolver> MakeWin32Resolver(std::shared_ptr<EventLoop> loop) {
    return MakeNameLookup(std::make_shared<Win32Names>(), std::move(loop));
}

}  // namespace kq
