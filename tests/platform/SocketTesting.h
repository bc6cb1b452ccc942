// A connection on loopback, both sides of it, and what each has told.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/Platform.h>

#include "platform/Machine.h"
#include "platform/MachineUnderTest.h"
#include "platform/Patience.h"
#include "platform/Socket.h"

namespace kq {

// A stream and what it has told.
struct Side {
    std::unique_ptr<StreamSocket> stream;
    std::string text;
    bool connected = false, failed = false, ended = false, writable = false;
    std::int32_t error = 0;

    void Take(std::unique_ptr<StreamSocket> taken) {
        stream = std::move(taken);
        stream->SetHandler([this](SocketEvent event) { On(event); });
    }
    void On(SocketEvent event) {
        connected |= event == SocketEvent::Connected;
        writable |= event == SocketEvent::Writable;
        failed |= event == SocketEvent::Failed;
        if (event == SocketEvent::Failed) error = stream->LastError();
        if (event == SocketEvent::Readable) ReadAll();
    }
    void ReadAll() {
        std::vector<std::byte> buffer(65536);
        const IoResult result = stream->Read(buffer);
        if (result.kind == IoResult::Kind::Done) {
            text.append(reinterpret_cast<const char*>(buffer.data()), result.count);
        }
        ended |= result.kind == IoResult::Kind::Ended;
        failed |= result.kind == IoResult::Kind::Failed;
        if (failed) error = result.error;
    }
    IoResult Write(const std::string& bytes) { return stream->Write(std::as_bytes(std::span(bytes))); }
};

class Sockets : public testing::Test {
 protected:
    bool Wait(const std::function<bool()>& done) { return Await(*loop_, done); }

    void Connect(const std::string& address = "127.0.0.1", const std::string& local = "") {
        if (!listener_) listener_ = network_->Listen(address, 0);
        listener_->SetHandler([this] {
            if (auto stream = listener_->Accept(nullptr)) server_.Take(std::move(stream));
        });
        client_.Take(network_->Connect(address, listener_->LocalPort(), local));
        ASSERT_TRUE(Wait([&] { return client_.connected && server_.stream; }));
    }

    // A port where nobody listens.
    int FreePort() { return network_->Listen("127.0.0.1", 0)->LocalPort(); }

    PlatformPtr machine_ = MachineUnderTest();
    std::shared_ptr<EventLoop> loop_ = machine_->Loop();
    std::shared_ptr<Network> network_ = machine_->Parts().network;
    std::unique_ptr<ListenSocket> listener_;
    Side server_, client_;
};

}  // namespace kq
