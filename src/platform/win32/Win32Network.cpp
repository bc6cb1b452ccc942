// Listening, accepting, and the machine's own address.
#include <array>
#include <utility>

#include <kqappsession/Error.h>

#include "platform/Socket.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Stream.h"
#include "platform/win32/Winsock.h"

namespace kq {
namespace {

constexpr std::string_view kSource = "KQAppProtocolLib";
constexpr Milliseconds kPauseWithoutRoom(100);

class Win32Listener final : public ListenSocket {
 public:
    // Takes the listening socket.
    Win32Listener(std::shared_ptr<EventLoop> loop, SOCKET socket) : loop_(std::move(loop)), socket_(socket) {
        const WinsockAddress local = LocalAddressOf(socket_);
        local_address_ = local.Text();
        local_port_ = local.Port();
    }

    ~Win32Listener() override {
        loop_->CancelTimer(pause_);
        if (watch_ != 0) loop_->Unwatch(watch_);
        closesocket(socket_);
    }

    void SetHandler(std::function<void()> handler) override {
        handler_ = handler ? std::make_shared<std::function<void()>>(std::move(handler)) : nullptr;
        UpdateWatch();
    }

    std::unique_ptr<StreamSocket> Accept(std::int32_t* error) override {
        if (error) *error = 0;
        const SOCKET accepted = accept(socket_, nullptr, nullptr);
        if (accepted != INVALID_SOCKET) {
            MakeOurs(accepted);
            return std::make_unique<Win32Stream>(loop_, accepted);
        }
        const int reason = WSAGetLastError();
        if (reason == WSAEMFILE || reason == WSAENOBUFS) {
            if (error) *error = reason;
            Pause();
        }
        return nullptr;  // else none waits, or the one that waited has gone
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

    WinsockSession winsock_;
    std::shared_ptr<EventLoop> loop_;
    SOCKET socket_;
    EventLoop::WatchId watch_ = 0;
    EventLoop::TimerId pause_ = 0;
    std::shared_ptr<std::function<void()>> handler_;
    std::string local_address_;
    int local_port_ = 0;
    Owner owner_;
};

// A listening socket, or INVALID_SOCKET with the last error set. No other program may take the port over, and
// a port that was in use a moment ago can be listened on again without further ado.
SOCKET OpenListener(const WinsockAddress& address, bool both_families) {
    const SOCKET socket = NewSocket(address.Family());
    if (socket == INVALID_SOCKET) return socket;
    SetOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, 1);
    if (address.Family() == AF_INET6) SetOption(socket, IPPROTO_IPV6, IPV6_V6ONLY, both_families ? 0 : 1);
    if (bind(socket, address.Get(), address.length) == 0 && listen(socket, SOMAXCONN) == 0) return socket;
    const int error = WSAGetLastError();
    closesocket(socket);
    WSASetLastError(error);
    return INVALID_SOCKET;
}

class Win32Network final : public Network {
 public:
    explicit Win32Network(std::shared_ptr<EventLoop> loop) : loop_(std::move(loop)) {}

    std::unique_ptr<StreamSocket> Connect(const std::string& address, int port,
                                          const std::string& local_address) override {
        return std::make_unique<Win32Stream>(loop_, address, port, local_address);
    }

    std::unique_ptr<ListenSocket> Listen(const std::string& local_address, int port) override {
        if (port < 0 || port > 65535) Raise(NetError::InvalidArgument, kSource);
        SOCKET socket = INVALID_SOCKET;
        if (local_address.empty()) {
            socket = OpenListener(*ParseAddress("::", port), true);
            // A machine without IPv6 listens on IPv4 alone.
            if (socket == INVALID_SOCKET &&
                (WSAGetLastError() == WSAEAFNOSUPPORT || WSAGetLastError() == WSAEADDRNOTAVAIL))
                socket = OpenListener(*ParseAddress("0.0.0.0", port), false);
        } else {
            const auto address = ParseAddress(local_address, port);
            if (!address) Raise(NetError::AddressNotAvailable, kSource);
            socket = OpenListener(*address, false);
        }
        if (socket == INVALID_SOCKET) Raise(static_cast<NetError>(WSAGetLastError()), kSource);
        return std::make_unique<Win32Listener>(loop_, socket);
    }

    std::string OwnAddress() const override {
        std::string own = "127.0.0.1";
        std::array<char, 256> name{};
        if (gethostname(name.data(), static_cast<int>(name.size()) - 1) != 0) return own;
        addrinfo hints{};
        hints.ai_family = AF_INET;
        hints.ai_socktype = SOCK_STREAM;
        addrinfo* first = nullptr;
        if (getaddrinfo(name.data(), nullptr, &hints, &first) != 0) return own;
        for (const addrinfo* entry = first; entry; entry = entry->ai_next) {
            const std::string text = AddressFrom(entry->ai_addr, entry->ai_addrlen).Text();
            if (text.empty() || text.rfind("127.", 0) == 0) continue;
            own = text;
            break;
        }
        freeaddrinfo(first);
        return own;
    }

 private:
    WinsockSession winsock_;
    std::shared_ptr<EventLoop> loop_;
};

}  // namespace

std::shared_ptr<Network> MakeWin32Network(std::shared_ptr<EventLoop> loop) {
    return std::make_shared<Win32Network>(std::move(loop));
}

}  // namespace kq
