// Two scenes for the tests: a client against a peer that is nothing but bytes, and a listener with raw bytes
// at its door. The frames are put together here by hand, so that a mistake in the library's framing is not
// made twice.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/APClient.h>
#include <kqappsession/Error.h>
#include <kqappsession/Listener.h>

#include "support/FakePlatform.h"

namespace kq {

inline std::string FrameOf(int data_type, const std::string& tag, const std::string& data) {
    const auto byte = [](std::size_t number, int shift) {
        return static_cast<char>((number >> shift) & 0xFF);
    };
    std::string frame = "KQ";
    frame += {'\x01', static_cast<char>(data_type), byte(tag.size(), 8), byte(tag.size(), 0)};
    frame += {byte(data.size(), 24), byte(data.size(), 16), byte(data.size(), 8), byte(data.size(), 0)};
    return frame + tag + data;
}
inline std::string XMLFrame(const std::string& text, const std::string& tag = {}) {
    return FrameOf(128, tag, text);
}
inline std::string RawFrame(const std::string& bytes, const std::string& tag = {}) {
    return FrameOf(0, tag, bytes);
}

// The number of the Error that `call` raises, 0 when it raises none.
inline std::int32_t NumberRaisedBy(const std::function<void()>& call, std::string* sentence = nullptr) {
    try {
        call();
        return 0;
    } catch (const Error& error) {
        if (sentence) *sentence = error.Description();
        return error.Number();
    }
}

// The far end of a connection.
class RawPeer {
 public:
    explicit RawPeer(std::unique_ptr<StreamSocket> stream) : stream_(std::move(stream)) {
        stream_->SetHandler([this](SocketEvent event) {
            if (event == SocketEvent::Readable) Read();
        });
    }
    void Send(const std::string& bytes) { stream_->Write(std::as_bytes(std::span(bytes))); }
    void FinishSending() { stream_->FinishWriting(); }
    void StopReading() { stream_->SetReading(false); }
    void ReadOn() { stream_->SetReading(true); }
    StreamSocket& Stream() { return *stream_; }

    std::string heard;
    bool heard_end = false;
    bool heard_reset = false;

 private:
    void Read() {
        std::vector<std::byte> buffer(4096);
        const IoResult result = stream_->Read(buffer);
        if (result.kind == IoResult::Kind::Ended) heard_end = true;
        if (result.kind == IoResult::Kind::Failed) heard_reset = true;
        heard.append(reinterpret_cast<const char*>(buffer.data()), result.count);
    }
    std::unique_ptr<StreamSocket> stream_;
};

inline constexpr const char* kServer = "10.0.0.5";
inline constexpr int kPort = 7000;

// A client and the peer it connects to. What the client's events say is noted in `heard_`.
class ClientScene : public testing::Test {
 protected:
    ClientScene() : client_(APClient::Create(machine_.platform)) {
        door_ = machine_.network->Listen(kServer, kPort);
        door_->SetHandler([this] {
            std::int32_t error = 0;
            if (auto stream = door_->Accept(&error)) peer_ = std::make_unique<RawPeer>(std::move(stream));
        });
        client_->Receive.Connect(owner_, [this](const Block& block) {
            Note((block.data_type == DataType::XML ? "xml:" : "raw:") + block.tag + "=" + block.data);
        });
        client_->Disconnected.Connect(owner_, [this] { Note("gone"); });
        client_->Error.Connect(owner_, [this](std::int32_t number, const std::string& sentence) {
            Note("error:" + std::to_string(number));
            sentence_ = sentence;
        });
    }

    void Note(const std::string& word) { heard_ += heard_.empty() ? word : " " + word; }
    void NoteProgress() {
        client_->Progress.Connect(owner_,
                                  [this](const std::string& tag, std::int64_t so_far, std::int64_t total) {
                                      Note(tag + ":" + std::to_string(so_far) + "/" + std::to_string(total));
                                  });
    }
    void Connect(std::int32_t time_out = 0) {
        client_->Connect(kServer, kPort, "", time_out);
        machine_.loop->RunReady();
        ASSERT_TRUE(peer_);
    }
    void ConnectTaking() {
        client_->SetReceiveMode(ReceiveMode::Take);
        Connect();
    }
    void Run() { machine_.loop->RunReady(); }
    void After(int milliseconds, std::function<void()> task) {
        machine_.loop->StartTimer(Milliseconds(milliseconds), std::move(task));
    }
    void PeerSends(const std::string& bytes) {
        peer_->Send(bytes);
        Run();
    }
    void PeerDrops() {
        peer_.reset();
        Run();
    }
    // Milliseconds that pass on the loop during `call`.
    std::int64_t TimeOf(const std::function<void()>& call) {
        const auto start = machine_.loop->Now();
        call();
        return std::chrono::duration_cast<Milliseconds>(machine_.loop->Now() - start).count();
    }
    std::int32_t TakeError(std::int32_t time_out = 0) {
        return NumberRaisedBy([&] { client_->TakeBlock(time_out); }, &sentence_);
    }

    FakePlatform machine_;
    std::unique_ptr<ListenSocket> door_;
    std::unique_ptr<RawPeer> peer_;
    std::shared_ptr<APClient> client_;
    std::string heard_;
    std::string sentence_;
    Owner owner_;
};

// A listener and callers that are nothing but bytes.
class ListenerScene : public testing::Test {
 protected:
    ListenerScene() : listener_(Listener::Create(machine_.platform)) {
        listener_->Accepted.Connect(owner_, [this](const Listener::ClientPtr& client) {
            accepted_.push_back(client);
            Note("accepted");
        });
        listener_->Receive.Connect(owner_, [this](const Listener::ClientPtr&, const Block& block) {
            Note(block.tag + "=" + block.data);
        });
        listener_->Disconnected.Connect(owner_, [this](const Listener::ClientPtr& client) {
            Note(listener_->Exists(client->Identifier()) ? "gone-but-there" : "gone");
        });
        listener_->ClientError.Connect(
            owner_, [this](const Listener::ClientPtr&, std::int32_t number, const std::string& sentence) {
                Note("client-error:" + std::to_string(number));
                sentence_ = sentence;
            });
        listener_->Error.Connect(owner_, [this](std::int32_t number, const std::string&) {
            Note("error:" + std::to_string(number));
        });
    }

    void Note(const std::string& word) { heard_ += heard_.empty() ? word : " " + word; }
    void Run() { machine_.loop->RunReady(); }
    void Listen() { listener_->Listen(kPort, ""); }
    void ListenWith(const APLimits& limits) {
        listener_->SetLimits(limits);
        Listen();
    }
    std::unique_ptr<RawPeer> Call(const std::string& from = {}) {
        auto caller = std::make_unique<RawPeer>(machine_.network->Connect("127.0.0.1", kPort, from));
        Run();
        return caller;
    }
    std::vector<std::unique_ptr<RawPeer>> Call(int count, const std::string& from) {
        std::vector<std::unique_ptr<RawPeer>> callers;
        for (int i = 0; i < count; ++i)
            callers.push_back(Call(from));
        return callers;
    }
    void Sends(RawPeer& caller, const std::string& bytes) {
        caller.Send(bytes);
        Run();
    }
    // What was noted since the last look.
    std::string Heard() { return std::exchange(heard_, {}); }

    FakePlatform machine_;
    std::shared_ptr<Listener> listener_;
    std::vector<Listener::ClientPtr> accepted_;
    std::string heard_;
    std::string sentence_;
    Owner owner_;
};

}  // namespace kq
