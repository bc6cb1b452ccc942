// TCP on loopback through the port: every ending of a connection attempt, both directions, and who may die
// when.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "platform/Patience.h"
#include "platform/Socket.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

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

    std::shared_ptr<EventLoop> loop_ = MakeOwnEventLoop();
    std::shared_ptr<Network> network_ = MakePosixNetwork(loop_);
    std::unique_ptr<ListenSocket> listener_;
    Side server_, client_;
};

TEST_F(Sockets, CarryBytesInBothDirections) {
    Connect();
    client_.Write("question");
    EXPECT_TRUE(Wait([&] { return server_.text == "question"; }));
    server_.Write("answer");
    EXPECT_TRUE(Wait([&] { return client_.text == "answer"; }));
}

TEST_F(Sockets, KnowBothAddresses) {
    Connect();
    EXPECT_EQ(client_.stream->LocalAddress(), "127.0.0.1");
    EXPECT_EQ(client_.stream->RemotePort(), listener_->LocalPort());
    EXPECT_EQ(server_.stream->RemoteAddress(), "127.0.0.1");
    EXPECT_EQ(server_.stream->RemotePort(), client_.stream->LocalPort());
    EXPECT_EQ(server_.stream->LocalPort(), listener_->LocalPort());
}

TEST_F(Sockets, ReportARefusalLater) {
    client_.Take(network_->Connect("127.0.0.1", FreePort(), ""));
    EXPECT_FALSE(client_.failed);
    EXPECT_TRUE(Wait([&] { return client_.failed; }));
    EXPECT_EQ(client_.error, 10061);
}

TEST_F(Sockets, ReportAtOnceFailuresLaterAndOnce) {
    struct Case {
        const char* address;
        int port;
        const char* local;
        std::int32_t error;
    };
    for (const Case& c : {Case{"no address", 1, "", 10022}, Case{"127.0.0.1", 0, "", 10049},
                          Case{"127.0.0.1", 65536, "", 10049}, Case{"127.0.0.1", 1, "::1", 10049},
                          Case{"127.0.0.1", 1, "nowhere", 10049}, Case{"", 1, "", 10022}}) {
        Side side;
        side.Take(network_->Connect(c.address, c.port, c.local));
        EXPECT_FALSE(side.failed);
        EXPECT_TRUE(Wait([&] { return side.failed; })) << c.address;
        EXPECT_EQ(side.stream->LastError(), c.error) << c.address << " " << c.port;
    }
}

TEST_F(Sockets, TellAFailureToAHandlerThatComesLate) {
    auto stream = network_->Connect("no address", 1, "");
    loop_->ProcessPending();
    client_.Take(std::move(stream));
    EXPECT_TRUE(Wait([&] { return client_.failed; }));
}

TEST_F(Sockets, ConnectFromTheGivenLocalAddress) {
    Connect("127.0.0.1", "127.0.0.2");
    EXPECT_EQ(server_.stream->RemoteAddress(), "127.0.0.2");
}

TEST_F(Sockets, SpeakIPv6) {
    try {
        listener_ = network_->Listen("::1", 0);
    } catch (const Error&) {
        GTEST_SKIP() << "this machine has no IPv6";
    }
    Connect("::1");
    EXPECT_EQ(server_.stream->RemoteAddress(), "::1");
}

TEST_F(Sockets, ListenToBothFamiliesWithoutAnAddressAndShowIPv4AsSuch) {
    listener_ = network_->Listen("", 0);
    Connect();
    EXPECT_EQ(server_.stream->RemoteAddress(), "127.0.0.1");
    EXPECT_EQ(server_.stream->LocalAddress(), "127.0.0.1");
}

TEST_F(Sockets, DeliverTheRestBeforeTheEnd) {
    Connect();
    server_.Write("goodbye");
    server_.stream->FinishWriting();
    EXPECT_TRUE(Wait([&] { return client_.ended; }));
    EXPECT_EQ(client_.text, "goodbye");
    client_.Write("you too");
    EXPECT_TRUE(Wait([&] { return server_.text == "you too"; }));
    EXPECT_EQ(server_.Write("more").error, 10058);
}

TEST_F(Sockets, DeliverTheRestAlsoWhenTheCloserLeftBytesUnread) {
    Connect();
    client_.Write("never read");
    server_.stream->SetReading(false);
    server_.Write("refused");
    server_.stream.reset();
    EXPECT_TRUE(Wait([&] { return client_.ended || client_.failed; }));
    EXPECT_EQ(client_.text, "refused");
}

TEST_F(Sockets, TellAResetByItsNumber) {
    const int raw = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    listener_ = network_->Listen("127.0.0.1", 0);
    listener_->SetHandler([this] { server_.Take(listener_->Accept(nullptr)); });
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(listener_->LocalPort()));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::connect(raw, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_TRUE(Wait([&] { return server_.stream != nullptr; }));
    const linger reset{1, 0};
    ::setsockopt(raw, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    ::close(raw);
    EXPECT_TRUE(Wait([&] { return server_.failed; }));
    EXPECT_EQ(server_.error, 10054);
}

TEST_F(Sockets, SayWhenThereIsRoomToWriteAgain) {
    Connect();
    server_.stream->SetReading(false);
    const std::string much(1 << 20, 'x');
    std::size_t written = 0;
    IoResult result;
    while ((result = client_.Write(much)).kind == IoResult::Kind::Done)
        written += result.count;
    ASSERT_EQ(result.kind, IoResult::Kind::WouldBlock);
    EXPECT_FALSE(client_.writable);
    server_.stream->SetReading(true);
    EXPECT_TRUE(Wait([&] { return client_.writable && server_.text.size() == written; }));
}

TEST_F(Sockets, HoldBytesBackWhileReadingIsOff) {
    Connect();
    client_.stream->SetReading(false);
    server_.Write("held");
    loop_->RunUntil([] { return false; }, loop_->Now() + Milliseconds(10));
    EXPECT_EQ(client_.text, "");
    client_.stream->SetReading(true);
    EXPECT_TRUE(Wait([&] { return client_.text == "held"; }));
}

TEST_F(Sockets, TellWhatCameBeforeTheHandlerWasSet) {
    Connect();
    client_.stream->SetHandler({});
    server_.Write("early");
    loop_->RunUntil([] { return false; }, loop_->Now() + Milliseconds(10));
    EXPECT_EQ(client_.text, "");
    client_.stream->SetHandler([&](SocketEvent event) { client_.On(event); });
    EXPECT_TRUE(Wait([&] { return client_.text == "early"; }));
}

TEST_F(Sockets, MayBeDestroyedInTheirCallbacks) {
    Connect();
    client_.stream->SetHandler([&](SocketEvent) { client_.stream.reset(); });
    listener_->SetHandler([&] { listener_.reset(); });
    server_.Write("last");
    auto another = network_->Connect("127.0.0.1", listener_->LocalPort(), "");
    EXPECT_TRUE(Wait([&] { return !client_.stream && !listener_ && server_.ended; }));
}

TEST_F(Sockets, AreNotConnectedBeforeTheyAre) {
    listener_ = network_->Listen("127.0.0.1", 0);
    const auto stream = network_->Connect("127.0.0.1", listener_->LocalPort(), "");
    std::byte byte{};
    EXPECT_EQ(stream->Read(std::span(&byte, 1)).error, 10057);
    EXPECT_EQ(stream->Write(std::span(&byte, 1)).error, 10057);
    EXPECT_EQ(stream->LocalAddress(), "");
}

TEST_F(Sockets, ReadNothingIntoNothing) {
    Connect();
    EXPECT_EQ(client_.stream->Read({}).kind, IoResult::Kind::WouldBlock);
}

// An option of the socket of this process that has the given local port; -1 when there is none.
int OptionOf(const StreamSocket& stream, int level, int option) {
    for (int socket = 0; socket < 1024; ++socket) {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) continue;
        if (address.sin_family != AF_INET || ntohs(address.sin_port) != stream.LocalPort()) continue;
        int value = -1;
        length = sizeof value;
        return ::getsockopt(socket, level, option, &value, &length) == 0 ? value : -1;
    }
    return -1;
}

TEST_F(Sockets, AreProbedAfterAMinuteOfSilenceWhileKeptAlive) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 0);
    client_.stream->SetKeepAlive(true);
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_KEEPIDLE), 60);
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_KEEPINTVL), 15);
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_KEEPCNT), 4);
    client_.stream->SetKeepAlive(false);
    EXPECT_EQ(OptionOf(*client_.stream, SOL_SOCKET, SO_KEEPALIVE), 0);
}

TEST_F(Sockets, SendSmallBlocksAtOnce) {
    Connect();
    EXPECT_EQ(OptionOf(*client_.stream, IPPROTO_TCP, TCP_NODELAY), 1);
}

std::int32_t ListenError(Network& network, const std::string& address, int port) {
    try {
        network.Listen(address, port);
    } catch (const Error& error) {
        EXPECT_EQ(error.Source(), "KQAppProtocolLib");
        return error.Number();
    }
    return 0;
}

TEST_F(Sockets, RaiseWhyTheyCannotListen) {
    listener_ = network_->Listen("127.0.0.1", 0);
    EXPECT_EQ(ListenError(*network_, "127.0.0.1", listener_->LocalPort()), 10048);
    EXPECT_EQ(ListenError(*network_, "192.0.2.1", 0), 10049);
    EXPECT_EQ(ListenError(*network_, "no address", 0), 10049);
    EXPECT_EQ(ListenError(*network_, "127.0.0.1", 65536), 10022);
}

TEST_F(Sockets, ListenAgainOnAPortThatWasJustInUse) {
    Connect();
    const int port = listener_->LocalPort();
    listener_.reset();
    server_.stream.reset();
    EXPECT_EQ(ListenError(*network_, "127.0.0.1", port), 0);
}

TEST_F(Sockets, AcceptNothingWhenNoneWaits) {
    listener_ = network_->Listen("127.0.0.1", 0);
    std::int32_t error = -1;
    EXPECT_EQ(listener_->Accept(&error), nullptr);
    EXPECT_EQ(error, 0);
}

// Takes all file handles that this process may have, and gives them back.
class NoHandlesLeft {
 public:
    NoHandlesLeft() {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        rlimit few = before_;
        few.rlim_cur = 0;
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    NoHandlesLeft(const NoHandlesLeft&) = delete;
    NoHandlesLeft& operator=(const NoHandlesLeft&) = delete;
    ~NoHandlesLeft() { ::setrlimit(RLIMIT_NOFILE, &before_); }

 private:
    rlimit before_{};
};

TEST_F(Sockets, PauseAcceptingWithoutHandlesAndGoOnByThemselves) {
    listener_ = network_->Listen("127.0.0.1", 0);
    client_.Take(network_->Connect("127.0.0.1", listener_->LocalPort(), ""));
    ASSERT_TRUE(Wait([&] { return client_.connected; }));
    int asked = 0;
    std::int32_t first_error = 0;
    std::optional<NoHandlesLeft> shortage(std::in_place);
    listener_->SetHandler([&] {
        std::int32_t error = 0;
        auto stream = listener_->Accept(&error);
        if (stream) server_.Take(std::move(stream));
        if (++asked == 1) first_error = error;
        loop_->Post([&] { shortage.reset(); });
    });
    EXPECT_TRUE(Wait([&] { return server_.stream != nullptr; }));
    EXPECT_EQ(first_error, 10024);
    EXPECT_EQ(asked, 2);
}

TEST_F(Sockets, OwnAddressIsANumericIPv4Address) {
    in_addr address{};
    EXPECT_EQ(::inet_pton(AF_INET, network_->OwnAddress().c_str(), &address), 1);
}

}  // namespace
}  // namespace kq
