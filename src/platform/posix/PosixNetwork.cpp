// Listening, accepting, and the machine's own address.
#include <cerrno>
#include <cstring>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include <kqappsession/Error.h>

#include "platform/Socket.h"
#include "platform/posix/PosixAddress.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/PosixStream.h"

namespace kq {
namespace {

constexpr std::string_view kSource = "KQAppProtocolLib";
constexpr Milliseconds kPauseWithoutRoom(100);

[[noreturn]] void RaiseErrno(int error) {
    Raise(static_cast<NetError>(WinsockNumber(error)), kSource);
}

class PosixListener final : public ListenSocket {
 public:
    // Takes the listening socket.
    PosixListener(std::shared_ptr<EventLoop> loop, int socket) : loop_(std::move(loop)), socket_(socket) {
        const PosixAddress local = LocalAddressOf(socket_);
        local_address_ = local.Text();
        local_port_ = local.Port();
    }

    ~PosixListener() override {
        loop_->CancelTimer(pause_);
        if (watch_ != 0) loop_->Unwatch(watch_);
        ::close(socket_);
    }

    void SetHandler(std::function<void()> handler) override {
        handler_ = handler ? std::make_shared<std::function<void()>>(std::move(handler)) : nullptr;
        UpdateWatch();
    }

    std::unique_ptr<StreamSocket> Accept(std::int32_t* error) override {
        if (error) *error = 0;
        int accepted;
        do {
            accepted = ::accept4(socket_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        } while (accepted == -1 && errno == EINTR);
        if (accepted != -1) return std::make_unique<PosixStream>(loop_, accepted);
        switch (errno) {
            case EMFILE:
            case ENFILE:
            case ENOBUFS:
            case ENOMEM:
                if (error) *error = WinsockNumber(errno);
                Pause();
                break;
            default:
                break;  // none waits, or the one that waited has gone
        }
        return nullptr;
    }

    std::string LocalAddress() const override { return local_address_; }
    int LocalPort() const override { return local_port_; }

 private:
    // The waiting connection stays ready; without a pause the loop would do nothing else than fail to take
    // it.
    void Pause() {
        if (pause_ != 0) return;
        pause_ = loop_->StartTimer(kPauseWithoutRoom, owner_.Bind([this] {
            pause_ = 0;
            UpdateWatch();
        }));
        UpdateWatch();
    }

    void UpdateWatch() {
        const EventLoop::Readiness wanted{handler_ && pause_ == 0, false};
        if (watch_ != 0) {
            loop_->ChangeWatch(watch_, wanted);
        } else if (wanted.readable) {
            watch_ = loop_->Watch(socket_, wanted, owner_.Bind([this](EventLoop::Readiness) {
                const auto handler = handler_;  // lives on when it is replaced or the listener goes
                if (handler) (*handler)();
            }));
        }
    }

    std::shared_ptr<EventLoop> loop_;
    int socket_;
    EventLoop::WatchId watch_ = 0;
    EventLoop::TimerId pause_ = 0;
    std::shared_ptr<std::function<void()>> handler_;
    std::string local_address_;
    int local_port_ = 0;
    Owner owner_;
};

// A listening socket, or -1 with errno set.
int OpenListener(const PosixAddress& address, bool both_families) {
    const int socket = NewSocket(address.Family());
    if (socket == -1) return -1;
    const int on = 1;
    const int off = 0;
    static_cast<void>(setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on));
    const bool ready =
        (!both_families || setsockopt(socket, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off) == 0) &&
        ::bind(socket, address.Get(), address.length) == 0 && ::listen(socket, SOMAXCONN) == 0;
    if (ready) return socket;
    const int error = errno;
    ::close(socket);
    errno = error;
    return -1;
}

class PosixNetwork final : public Network {
 public:
    explicit PosixNetwork(std::shared_ptr<EventLoop> loop) : loop_(std::move(loop)) {}

    std::unique_ptr<StreamSocket> Connect(const std::string& address, int port,
                                          const std::string& local_address) override {
        return std::make_unique<PosixStream>(loop_, address, port, local_address);
    }

    std::unique_ptr<ListenSocket> Listen(const std::string& local_address, int port) override {
        if (port < 0 || port > 65535) Raise(NetError::InvalidArgument, kSource);
        int socket = -1;
        if (local_address.empty()) {
            socket = OpenListener(*ParseAddress("::", port), true);
            // A machine without IPv6 listens on IPv4 alone.
            if (socket == -1 && (errno == EAFNOSUPPORT || errno == EADDRNOTAVAIL)) {
                socket = OpenListener(*ParseAddress("0.0.0.0", port), false);
            }
        } else {
            const auto address = ParseAddress(local_address, port);
            if (!address) Raise(NetError::AddressNotAvailable, kSource);
            socket = OpenListener(*address, false);
        }
        if (socket == -1) RaiseErrno(errno);
        return std::make_unique<PosixListener>(loop_, socket);
    }

    std::string OwnAddress() const override {
        std::string own = "127.0.0.1";
        ifaddrs* first = nullptr;
        if (getifaddrs(&first) != 0) return own;
        for (const ifaddrs* entry = first; entry; entry = entry->ifa_next) {
            if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET) continue;
            if ((entry->ifa_flags & IFF_UP) == 0 || (entry->ifa_flags & IFF_LOOPBACK) != 0) continue;
            PosixAddress address;
            address.length = sizeof(sockaddr_in);
            std::memcpy(&address.storage, entry->ifa_addr, sizeof(sockaddr_in));
            const std::string text = address.Text();
            if (text.empty() || text.rfind("127.", 0) == 0) continue;
            own = text;
            break;
        }
        freeifaddrs(first);
        return own;
    }

 private:
    std::shared_ptr<EventLoop> loop_;
};

}  // namespace

std::shared_ptr<Network> MakePosixNetwork(std::shared_ptr<EventLoop> loop) {
    return std::make_shared<PosixNetwork>(std::move(loop));
}

}  // namespace kq
