// Names to addresses by the system's resolver. It has no way to be asked without waiting, so each question
// gets a thread of its own, which may outlive the resolver and the loop: it knows only a mailbox, closed when
// they go. Callbacks never travel to that thread; they wait in the resolver for the answer's number.
#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "platform/Resolver.h"
#include "platform/posix/PosixAddress.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

using Addresses = std::vector<std::string>;
using Answer = std::function<void(Addresses)>;

std::string LocalHostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : std::string();
}

bool IsUsableName(const std::string& name) {
    return !name.empty() && name.find('\0') == std::string::npos;
}

bool IsDottedAddress(const std::string& text) {
    in_addr address{};
    return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

// In the resolver's order, each once.
Addresses Ask(const std::string& host, int family) {
    Addresses found;
    if (!IsUsableName(host)) return found;
    addrinfo hints{};
    hints.ai_family = family;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* first = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &first) != 0) return found;
    for (const addrinfo* entry = first; entry; entry = entry->ai_next) {
        PosixAddress address;
        address.length = entry->ai_addrlen;
        std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
        std::string text = address.Text();
        if (!text.empty() && std::find(found.begin(), found.end(), text) == found.end())
            found.push_back(text);
    }
    freeaddrinfo(first);
    return found;
}

Addresses AskBoth(const std::string& host) {
    Addresses all = Ask(host, AF_INET);
    for (auto& address : Ask(host, AF_INET6))
        all.push_back(std::move(address));
    return all;
}

struct Mailbox {
    std::mutex mutex;
    EventLoop* loop = nullptr;  // null once the resolver is gone
};

class PosixResolver final : public Resolver {
 public:
    explicit PosixResolver(std::shared_ptr<EventLoop> loop)
        : loop_(std::move(loop)),
          mailbox_(std::make_shared<Mailbox>()),
          waiting_(std::make_shared<Waiting>()) {
        mailbox_->loop = loop_.get();
    }

    ~PosixResolver() override {
        const std::lock_guard lock(mailbox_->mutex);
        mailbox_->loop = nullptr;
    }

    std::string FirstIPv4(const std::string& host) override {
        if (IsDottedAddress(host) && IsUsableName(host)) return host;
        const Addresses found = Ask(host.empty() ? LocalHostName() : host, AF_INET);
        return found.empty() ? std::string() : found.front();
    }

    void Resolve(const std::string& host, const Owner& owner, Answer done) override {
        const std::uint64_t number = ++last_number_;
        waiting_->emplace(number, owner.Bind(std::move(done)));
        const std::string name = host.empty() ? LocalHostName() : host;
        if (const auto numeric = ParseAddress(name, 0)) {
            loop_->Post(Delivery(number, {numeric->Text()}));
            return;
        }
        try {
            std::thread([name, box = mailbox_, weak = std::weak_ptr(waiting_), number] {
                Addresses found = AskBoth(name);
                const std::lock_guard lock(box->mutex);
                if (box->loop) box->loop->Post(DeliveryTo(weak, number, std::move(found)));
            }).detach();
        } catch (const std::system_error&) {
            loop_->Post(Delivery(number, {}));  // no thread to be had: not found
        }
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

    EventLoop::Task Delivery(std::uint64_t number, Addresses found) {
        return DeliveryTo(waiting_, number, std::move(found));
    }

    std::shared_ptr<EventLoop> loop_;
    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<Waiting> waiting_;
    std::uint64_t last_number_ = 0;
};

}  // namespace

std::shared_ptr<Resolver> MakePosixResolver(std::shared_ptr<EventLoop> loop) {
    return std::make_shared<PosixResolver>(std::move(loop));
}

}  // namespace kq
