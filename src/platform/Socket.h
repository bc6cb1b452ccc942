// TCP as the library needs it: non-blocking streams and listeners that report through the event loop.
//
// Error numbers are Winsock's on every platform (NetError). A callback is never called from inside a call on
// the same object, and never after the object is destroyed; it may destroy the object.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace kq {

struct IoResult {
    enum class Kind {
        Done,        // `count` bytes were taken (at least 1)
        WouldBlock,  // not now; the next Readable or Writable event reports when
        Ended,       // read only: the peer has finished sending
        Failed,      // with `error`; the stream cannot be used any more
    };
    Kind kind = Kind::WouldBlock;
    std::size_t count = 0;
    std::int32_t error = 0;
};

enum class SocketEvent {
    Connected,  // once, first: the connection is open
    Readable,   // Read returns something: bytes, the end, or an error
    Writable,   // after a Write that would have blocked: there is room again
    Failed,     // the connection attempt failed; see LastError
};

class StreamSocket {
 public:
    virtual ~StreamSocket() = default;  // closes
    // An accepted stream reports Readable only; a connecting one first Connected or Failed. Bytes that
    // arrived before a handler was set are reported when it is set.
    virtual void SetHandler(std::function<void(SocketEvent)> handler) = 0;
    virtual IoResult Read(std::span<std::byte> buffer) = 0;
    virtual IoResult Write(std::span<const std::byte> bytes) = 0;
    // Stops (false) and resumes Readable events; bytes wait in the meantime.
    virtual void SetReading(bool on) = 0;
    // No more will be written; the peer reads what was written and then the end.
    virtual void FinishWriting() = 0;
    virtual void SetKeepAlive(bool on) = 0;
    virtual std::int32_t LastError() const = 0;
    virtual std::string LocalAddress() const = 0;  // numeric, empty before the connection is open
    virtual int LocalPort() const = 0;
    virtual std::string RemoteAddress() const = 0;
    virtual int RemotePort() const = 0;
};

class ListenSocket {
 public:
    virtual ~ListenSocket() = default;  // closes
    // Called when a connection waits to be accepted, and again while one waits.
    virtual void SetHandler(std::function<void()> handler) = 0;
    // The next queued connection; null when there is none or its peer has disconnected. When the machine has
    // no room for it (no free file handles) `error` is set, and the listener pauses for a moment.
    virtual std::unique_ptr<StreamSocket> Accept(std::int32_t* error) = 0;
    virtual std::string LocalAddress() const = 0;
    virtual int LocalPort() const = 0;
};

class Network {
 public:
    virtual ~Network() = default;
    // Starts connecting to a numeric address (IPv4 or IPv6), from `local_address` unless it is empty.
    // Failures, also immediate ones, arrive as SocketEvent::Failed.
    virtual std::unique_ptr<StreamSocket> Connect(const std::string& address, int port,
                                                  const std::string& local_address) = 0;
    // Listens on a numeric local address (empty: all) and port (0: a free one). Raises NetError with the
    // source "KQAppProtocolLib": address in use, not available, access denied.
    virtual std::unique_ptr<ListenSocket> Listen(const std::string& local_address, int port) = 0;
    // The machine's first IPv4 address that is not loopback, else "127.0.0.1".
    virtual std::string OwnAddress() const = 0;
};

}  // namespace kq
