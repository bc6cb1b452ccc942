// Systems have no common way to resolve names without waiting, so each query gets a thread, which may outlive
// the resolver and the loop. The thread knows only a mailbox, which is closed when they are destroyed.
// Callbacks are never passed to that thread; they stay in the resolver under the number of their query.
#include "platform/net/NameLookup.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "platform/net/SocketCalls.h"

namespace kq {
namespace {

using Addresses = std::vector<std::string>;
using Answer = std::function<void(Addresses)>;

// IPv4 before IPv6, each address once.
Addresses AskBoth(NameCalls& calls, const std::string& host) {
    Addresses all;
    if (host.empty() || host.find('\0') != std::string::npos) return all;
    for (const auto family : {NameCalls::Family::IPv4, NameCalls::Family::IPv6}) {
        for (const auto& address : calls.Ask(host, family)) {
            const std::string plain = PlainAddress(address);
            if (std::find(all.begin(), all.end(), plain) == all.end()) all.push_back(plain);
        }
    }
    return all;
}

struct Mailbox {
    std::mutex mutex;
    EventLoop* loop = nullptr;  // null once the resolver is gone
};

class NameLookup final : public Resolver {
 public:
    NameLookup(std::shared_ptr<NameCalls> calls, std::shared_ptr<EventLoop> loop)
        : calls_(std::move(calls)),
          loop_(std::move(loop)),
          mailbox_(std::make_shared<Mailbox>()),
          waiting_(std::make_shared<Waiting>()) {
        mailbox_->loop = loop_.get();
    }

    ~NameLookup() override {
        const std::lock_guard lock(mailbox_->mutex);
        mailbox_->loop = nullptr;
    }

    std::string FirstIPv4(const std::string& host) override { return calls_->FirstIPv4(host); }

    void Resolve(const std::string& host, const Owner& owner, Answer done) override {
        const std::uint64_t number = ++last_number_;
        waiting_->emplace(number, owner.Bind(std::move(done)));
        const std::string name = host.empty() ? calls_->LocalHostName() : host;
        if (const auto numeric = calls_->Numeric(name)) {
            loop_->Post(DeliveryTo(waiting_, number, {PlainAddress(*numeric)}));
            return;
        }
        const bool asked = calls_->RunOnThread(
            [name, calls = calls_, box = mailbox_, weak = std::weak_ptr(waiting_), number] {
                Addresses found = AskBoth(*calls, name);
                const std::lock_guard lock(box->mutex);
                if (box->loop) box->loop->Post(DeliveryTo(weak, number, std::move(found)));
            });
        if (!asked) loop_->Post(DeliveryTo(waiting_, number, {}));  // as if not found
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

    std::shared_ptr<NameCalls> calls_;
    std::shared_ptr<EventLoop> loop_;
    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<Waiting> waiting_;
    std::uint64_t last_number_ = 0;
};

}  // namespace

std::shared_ptr<Resolver> MakeNameLookup(std::shared_ptr<NameCalls> calls, std::shared_ptr<EventLoop> loop) {
    return std::make_shared<NameLookup>(std::move(calls), std::move(loop));
}

}  // namespace kq
