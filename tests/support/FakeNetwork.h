// TCP in memory. Peers of a test use the same Network as what is tested: one listens, the other connects.
// Every event arrives as a task of the fake loop.
//
// Listening on "" stands for the machine itself (own address and loopback); listening on any other address
// plays another machine. After one side is closed, the other reads the rest and then the end; what it writes
// is lost, and once it has read the end its writes fail with 10054.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/EventLoop.h>

#include "platform/Socket.h"

namespace kq {

class FakeWire;

class FakeNetwork final : public Network {
 public:
    explicit FakeNetwork(std::shared_ptr<EventLoop> loop);
    ~FakeNetwork() override;

    // Connecting there never comes to an end.
    void BlackHole(const std::string& address, int port);
    // At most `count` bytes for each Readable event, for all streams; 1 is byte by byte, 0 without limit.
    void Split(std::size_t count);
    // How many written bytes one direction holds before Write would block; 64 KiB unless set.
    void SetPipeSize(std::size_t size);
    void SetOwnAddress(const std::string& address) { own_address_ = address; }
    // The next Listen raises this error.
    void FailNextListen(NetError error) { listen_error_ = error; }
    // The next Accept gives no connection and this error; the connection keeps waiting.
    void FailNextAccept(std::int32_t error) { accept_error_ = error; }
    // Resets the connection of `stream`, given from either side: what waits is lost, both sides fail with
    // 10054.
    void Cut(StreamSocket& stream);
    void CutAll();

    struct Attempt {
        std::string address;
        int port;
        std::string local_address;
    };
    // Every call of Connect so far.
    const std::vector<Attempt>& Attempts() const { return attempts_; }
    std::size_t ConnectCount() const { return attempts_.size(); }
    // Streams that are not destroyed yet, and those of them that have keep-alive on.
    std::size_t OpenStreams() const;
    std::size_t KeptAliveStreams() const;

    std::unique_ptr<StreamSocket> Connect(const std::string& address, int port,
                                          const std::string& local_address) override;
    std::unique_ptr<ListenSocket> Listen(const std::string& local_address, int port) override;
    std::string OwnAddress() const override { return own_address_; }

 private:
    class Listener;
    struct Station;  // what listens at one address and port

    std::shared_ptr<Station> Find(const std::string& address, int port) const;
    bool IsOwn(const std::string& address) const;
    void FinishConnecting(const std::shared_ptr<FakeWire>& caller, const Attempt& attempt);
    std::shared_ptr<FakeWire> NewWire();

    std::shared_ptr<EventLoop> loop_;
    Owner owner_;
    std::string own_address_ = "192.0.2.10";
    std::size_t split_ = 0;
    std::size_t pipe_size_ = 64 * 1024;
    std::optional<NetError> listen_error_;
    std::int32_t accept_error_ = 0;
    int next_port_ = 49152;
    std::set<std::pair<std::string, int>> black_holes_;
    std::vector<Attempt> attempts_;
    std::vector<std::weak_ptr<Station>> stations_;
    std::vector<std::weak_ptr<FakeWire>> wires_;
};

}  // namespace kq
