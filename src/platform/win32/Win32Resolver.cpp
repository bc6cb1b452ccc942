// Names to addresses. Asked without waiting, each question gets a thread of its own, which may outlive the
// resolver and the loop: it knows only a mailbox, closed when they go. Callbacks never travel to that thread;
// they wait in the resolver for the answer's number.
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include <kqappsession/EventLoop.h>

#include "platform/Resolver.h"
#include "platform/win32/Win32Module.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"
#include "platform/win32/Winsock.h"

namespace kq {
namespace {

using Addresses = std::vector<std::string>;
using Answer = std::function<void(Addresses)>;

std::string LocalHostName() {
    std::array<char, 256> name{};
    const bool known = gethostname(name.data(), static_cast<int>(name.size()) - 1) == 0;
    return known ? FromAnsi(name.data()) : std::string();
}

// In the resolver's order, each once. The wide call is the one that takes every name.
Addresses Ask(const std::string& host, int family) {
    Addresses found;
    if (host.empty() || HoldsNul(host)) return found;
    ADDRINFOW hints{};
    hints.ai_family = family;
    hints.ai_socktype = SOCK_STREAM;
    ADDRINFOW* first = nullptr;
    if (GetAddrInfoW(ToWide(host).c_str(), nullptr, &hints, &first) != 0) return found;
    for (const ADDRINFOW* entry = first; entry; entry = entry->ai_next) {
        std::string text = AddressFrom(entry->ai_addr, entry->ai_addrlen).Text();
        if (!text.empty() && std::find(found.begin(), found.end(), text) == found.end())
            found.push_back(text);
    }
    FreeAddrInfoW(first);
    return found;
}

Addresses AskBoth(const std::string& host) {
    const WinsockSession winsock;
    Addresses all = Ask(host, AF_INET);
    for (auto& address : Ask(host, AF_INET6))
        all.push_back(std::move(address));
    return all;
}

struct Mailbox {
    std::mutex mutex;
    EventLoop* loop = nullptr;  // null once the resolver is gone
};

class Win32Resolver final : public Resolver {
 public:
    explicit Win32Resolver(std::shared_ptr<EventLoop> loop)
        : loop_(std::move(loop)),
          mailbox_(std::make_shared<Mailbox>()),
          waiting_(std::make_shared<Waiting>()) {
        mailbox_->loop = loop_.get();
    }

    ~Win32Resolver() override {
        const std::lock_guard lock(mailbox_->mutex);
        mailbox_->loop = nullptr;
    }

    // A dotted address passes through the resolver; an empty name is the local host's.
    std::string FirstIPv4(const std::string& host) override {
        const WinsockSession winsock;
        if (!winsock.Started() || HoldsNul(host)) return {};
        const hostent* const entry = gethostbyname(ToAnsi(host).c_str());
        if (!entry || entry->h_addrtype != AF_INET || !entry->h_addr_list[0]) return {};
        in_addr address{};
        std::copy_n(entry->h_addr_list[0], sizeof address, reinterpret_cast<char*>(&address));
        const char* const text = inet_ntoa(address);
        return text ? text : "";
    }

    void Resolve(const std::string& host, const Owner& owner, Answer done) override {
        const std::uint64_t number = ++last_number_;
        waiting_->emplace(number, owner.Bind(std::move(done)));
        const std::string name = host.empty() ? LocalHostName() : host;
        if (const auto numeric = ParseAddress(name, 0)) {
            loop_->Post(DeliveryTo(waiting_, number, {numeric->Text()}));
            return;
        }
        const bool asked = RunOnWorkerThread([name, box = mailbox_, weak = std::weak_ptr(waiting_), number] {
            Addresses found = AskBoth(name);
            const std::lock_guard lock(box->mutex);
            if (box->loop) box->loop->Post(DeliveryTo(weak, number, std::move(found)));
        });
        if (!asked) loop_->Post(DeliveryTo(waiting_, number, {}));  // no thread to be had: not found
    }

 private:
    using Waiting = std::map<std::uint64_t, Answer>;

    static EventLoop::Task DeliveryTo(std::weak_ptr<Waiting> weak, std::uint64_t number, Addresses found) {
        return [weak = std::move(weak), number, found = std::move(found)] {
            const auto waiting = weak.lock();
            if (!waiting) return;
            if (auto node = waiting->extract(number)) node.mapped()(found);
        };
    }

    WinsockSession winsock_;
    std::shared_ptr<EventLoop> loop_;
    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<Waiting> waiting_;
    std::uint64_t last_number_ = 0;
};

}  // namespace

std::shared_ptr<Resolver> MakeWin32Resolver(std::shared_ptr<EventLoop> loop) {
    return std::make_shared<Win32Resolver>(std::move(loop));
}

}  // namespace kq
