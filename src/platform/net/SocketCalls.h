// The calls on the system's sockets that streams and listeners need. Implemented by the port.
//
// A call does one thing and keeps no state. It never waits and is never interrupted: a port repeats calls
// that a signal has interrupted. Error numbers are Winsock's on every system; 0 is success. Sockets are
// non-blocking, carry TCP and are not inherited by child processes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/EventLoop.h>

namespace kq {

// A numeric address with a port, in the system's own form.
struct SocketAddress {
    alignas(8) std::array<std::byte, 128> bytes{};
    std::uint32_t length = 0;
};

// An IPv4 address inside an IPv6 one ("::ffff:192.0.2.1") as IPv4, any other as it is.
inline std::string PlainAddress(const std::string& numeric) {
    constexpr std::string_view kMapped = "::ffff:";
    const bool mapped = numeric.starts_with(kMapped) && numeric.find('.') != std::string::npos;
    return mapped ? numeric.substr(kMapped.size()) : numeric;
}

class SocketCalls {
 public:
    using Socket = EventLoop::NativeSocket;
    static constexpr auto kNone = static_cast<Socket>(-1);

    // The errors that are expected in normal operation.
    static constexpr std::int32_t kTooManyOpen = 10024;
    static constexpr std::int32_t kWouldBlock = 10035;
    static constexpr std::int32_t kNoSuchFamily = 10047;
    static constexpr std::int32_t kShutDown = 10058;

    struct Opened {
        Socket socket = kNone;
        std::int32_t error = 0;
    };
    struct Moved {
        std::size_t count = 0;  // received 0 without an error: the peer has finished
        std::int32_t error = 0;
    };
    struct End {
        std::string address;  // "192.0.2.1" or "2001:db8::1"
        int port = 0;
    };
    struct Accepted {
        Socket socket = kNone;
        std::int32_t error = 0;
        End remote;
    };

    virtual ~SocketCalls() = default;

    // Nothing when the text is not a numeric address. A scope ("fe80::1%eth0") is understood.
    virtual std::optional<SocketAddress> Parse(const std::string& text, int port) = 0;
    virtual bool SameFamily(const SocketAddress& one, const SocketAddress& other) = 0;

    // A socket for addresses of this family.
    virtual Opened Open(const SocketAddress& family) = 0;
    virtual std::int32_t Bind(Socket socket, const SocketAddress& address) = 0;
    // Starts an attempt. 0 also when it is in progress: the socket becomes writable when the attempt has
    // ended.
    virtual std::int32_t Connect(Socket socket, const SocketAddress& address) = 0;
    // The result of an attempt that has ended.
    virtual std::int32_t ConnectError(Socket socket) = 0;
    // Options of a listener, before it is bound: a port that has just been closed can be used again
    // immediately.
    virtual std::int32_t PrepareListener(Socket socket, const SocketAddress& address, bool both_families) = 0;
    virtual std::int32_t Listen(Socket socket) = 0;
    // Also returns the peer's address: a socket whose peer has already reset the connection does not know it
    // any more.
    virtual Accepted Accept(Socket listener) = 0;

    virtual Moved Receive(Socket socket, std::span<std::byte> buffer) = 0;
    virtual Moved Send(Socket socket, std::span<const std::byte> bytes) = 0;
    virtual void FinishSending(Socket socket) = 0;
    virtual void Close(Socket socket) = 0;

    virtual End LocalEnd(Socket socket) = 0;  // empty when it is not connected
    virtual End RemoteEnd(Socket socket) = 0;
    // Options of a connection. If the system lacks one, the connection still works.
    virtual void SendWithoutDelay(Socket socket) = 0;
    virtual void SetKeepAlive(Socket socket, bool on) = 0;

    // The machine's numeric IPv4 addresses in the system's order; empty when they cannot be had.
    virtual std::vector<std::string> OwnAddresses() = 0;
};

}  // namespace kq
