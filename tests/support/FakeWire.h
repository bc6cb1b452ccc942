// One side of a connection in memory: what FakeStream hands out and FakeNetwork joins together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <kqappsession/EventLoop.h>

#include "platform/Socket.h"

namespace kq {

class FakeWire : public std::enable_shared_from_this<FakeWire> {
 public:
    FakeWire(std::shared_ptr<EventLoop> loop, std::size_t split_size, std::size_t capacity)
        : split(split_size), pipe_size(capacity), loop_(std::move(loop)) {}

    enum class State { Connecting, Open, Failed, Closed };

    // Joins two sides; both are open from here on.
    static void Join(const std::shared_ptr<FakeWire>& caller, const std::shared_ptr<FakeWire>& called);
    void AnnounceConnected() { Announce(SocketEvent::Connected); }
    void FailToConnect(std::int32_t error);
    void Reset();  // this side only
    void Close();  // the stream is destroyed: the other side reads the rest and then the end

    std::shared_ptr<FakeWire> Peer() const { return peer_.lock(); }
    State GetState() const { return state_; }

    void SetHandler(std::function<void(SocketEvent)> handler);
    IoResult Read(std::span<std::byte> buffer);
    IoResult Write(std::span<const std::byte> bytes);
    void SetReading(bool on);
    void FinishWriting();

    std::size_t split;
    std::size_t pipe_size;
    bool keep_alive = false;
    std::int32_t last_error = 0;
    std::string local_address, remote_address;
    int local_port = 0, remote_port = 0;

 private:
    using Handler = std::function<void(SocketEvent)>;

    void Announce(SocketEvent event);  // Connected or Failed, kept until a handler is there
    void PostAnnouncement();
    void PostReadable();
    void PostWritable();
    bool IsReadable() const;
    void Call(SocketEvent event);

    std::shared_ptr<EventLoop> loop_;
    std::weak_ptr<FakeWire> peer_;
    std::shared_ptr<Handler> handler_;
    State state_ = State::Connecting;
    std::string incoming_;
    std::size_t budget_ = 0;  // bytes that may still be read for the latest Readable event, when split
    bool ended_ = false;      // the peer sends no more than incoming_
    bool end_read_ = false;
    bool was_open_ = false;
    bool finished_ = false;  // FinishWriting was called
    bool reading_ = true;
    bool wants_to_write_ = false;
    bool announcing_ = false;
    SocketEvent announcement_ = SocketEvent::Connected;
    bool readable_posted_ = false;
};

// The stream that holds one side.
class FakeStream final : public StreamSocket {
 public:
    explicit FakeStream(std::shared_ptr<FakeWire> wire) : wire_(std::move(wire)) {}
    ~FakeStream() override { wire_->Close(); }

    FakeWire& Wire() { return *wire_; }

    void SetHandler(std::function<void(SocketEvent)> handler) override {
        wire_->SetHandler(std::move(handler));
    }
    IoResult Read(std::span<std::byte> buffer) override { return wire_->Read(buffer); }
    IoResult Write(std::span<const std::byte> bytes) override { return wire_->Write(bytes); }
    void SetReading(bool on) override { wire_->SetReading(on); }
    void FinishWriting() override { wire_->FinishWriting(); }
    void SetKeepAlive(bool on) override { wire_->keep_alive = on; }
    std::int32_t LastError() const override { return wire_->last_error; }
    std::string LocalAddress() const override { return wire_->local_address; }
    int LocalPort() const override { return wire_->local_port; }
    std::string RemoteAddress() const override { return wire_->remote_address; }
    int RemotePort() const override { return wire_->remote_port; }

 private:
    std::shared_ptr<FakeWire> wire_;
};

}  // namespace kq
