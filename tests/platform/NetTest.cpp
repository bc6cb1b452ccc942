// Streams and listeners above calls that answer what the test wants, every error included.
#include <array>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "platform/FakeSockets.h"
#include "platform/Socket.h"
#include "platform/net/TcpNetwork.h"

namespace kq {
namespace {

// Whatever a system may answer.
constexpr std::int32_t kErrors[] = {10004, 10013, 10014, 10022, 10024, 10038, 10047, 10048, 10049, 10050,
                                    10051, 10052, 10053, 10054, 10055, 10057, 10060, 10061, 10064, 10065};

class Net : public testing::Test {
 protected:
    std::unique_ptr<StreamSocket> Connect(const std::string& local = "") {
        auto stream = network_->Connect("192.0.2.9", 7, local);
        stream->SetHandler([this](SocketEvent event) { told_ += Letter(event); });
        return stream;
    }
    std::unique_ptr<StreamSocket> Connected() {
        auto stream = Connect();
        loop_->BecomeReady({false, true});
        EXPECT_EQ(std::exchange(told_, ""), "C");
        return stream;
    }
    static char Letter(SocketEvent event) { return "CRWF"[static_cast<int>(event)]; }

    static IoResult Read(StreamSocket& stream) {
        std::array<std::byte, 10> buffer{};
        return stream.Read(buffer);
    }
    static IoResult Write(StreamSocket& stream, const std::string& text) {
        return stream.Write(std::as_bytes(std::span(text)));
    }
    static void ExpectFailure(const IoResult& result, std::int32_t error) {
        EXPECT_EQ(result.kind, IoResult::Kind::Failed);
        EXPECT_EQ(result.error, error);
    }
    std::int32_t ErrorOfListen(const std::string& address = "") {
        try {
            network_->Listen(address, 7);
        } catch (const Error& error) {
            EXPECT_EQ(error.Source(), "KQAppProtocolLib");
            return error.Number();
        }
        return 0;
    }

    std::shared_ptr<FakeSockets> sockets_ = std::make_shared<FakeSockets>();
    std::shared_ptr<FakeSocketLoop> loop_ = std::make_shared<FakeSocketLoop>();
    std::shared_ptr<Network> network_ = MakeTcpNetwork(sockets_, loop_);
    std::string told_;  // a letter for each event
};

TEST_F(Net, TellsOnceAndLaterThatAnAttemptFailedImmediately) {
    for (const auto call : {SocketCall::Open, SocketCall::Bind, SocketCall::Connect}) {
        for (const std::int32_t error : kErrors) {
            sockets_->Fail(call, error);
            const auto stream = Connect("192.0.2.1");
            EXPECT_EQ(std::exchange(told_, ""), "");
            loop_->RunReady();
            EXPECT_EQ(std::exchange(told_, ""), "F");
            EXPECT_EQ(stream->LastError(), error);
            ExpectFailure(Read(*stream), error);
            ExpectFailure(Write(*stream, "x"), error);
        }
        sockets_->Fail(call, 0);
    }
    EXPECT_EQ(sockets_->OpenSockets(), 0);
}

TEST_F(Net, TellsOnceThatAnAttemptFailedInTheEnd) {
    for (const std::int32_t error : kErrors) {
        sockets_->Fail(SocketCall::ConnectError, error);
        const auto stream = Connect();
        EXPECT_EQ(Read(*stream).error, 10057);
        loop_->BecomeReady({true, true});
        loop_->BecomeReady({true, true});
        EXPECT_EQ(std::exchange(told_, ""), "F");
        EXPECT_EQ(stream->LastError(), error);
    }
    EXPECT_EQ(sockets_->OpenSockets(), 0);
    EXPECT_EQ(loop_->WatchCount(), 0U);
}

TEST_F(Net, RefusesAddressesAndPortsThatAreNone) {
    const auto error_of = [&](const std::string& address, int port, const std::string& local) {
        return network_->Connect(address, port, local)->LastError();
    };
    EXPECT_EQ(error_of("no.such", 7, ""), 10022);
    EXPECT_EQ(error_of("192.0.2.9", 0, ""), 10049);
    EXPECT_EQ(error_of("192.0.2.9", 65536, ""), 10049);
    EXPECT_EQ(error_of("192.0.2.9", 7, "no.such"), 10049);
    EXPECT_EQ(error_of("192.0.2.9", 7, "2001:db8::1"), 10049);
    EXPECT_EQ(ErrorOfListen("no.such"), 10049);
}

TEST_F(Net, ShowsBothEndsOfAConnection) {
    const auto stream = Connected();
    EXPECT_EQ(stream->LocalAddress(), "192.0.2.1");
    EXPECT_EQ(stream->LocalPort(), 1234);
    EXPECT_EQ(stream->RemoteAddress(), "2001:db8::2");
    EXPECT_EQ(stream->RemotePort(), 5678);
}

TEST_F(Net, EndsAStreamWithTheErrorOfARead) {
    for (const std::int32_t error : kErrors) {
        const auto stream = Connected();
        sockets_->Fail(SocketCall::Receive, error);
        ExpectFailure(Read(*stream), error);
        sockets_->Fail(SocketCall::Receive, 0);
        ExpectFailure(Read(*stream), error);
        ExpectFailure(Write(*stream, "x"), error);
        EXPECT_FALSE(loop_->WantsToRead());
    }
}

TEST_F(Net, ReadsOnAfterTheErrorOfAWrite) {
    for (const std::int32_t error : kErrors) {
        const auto stream = Connected();
        sockets_->Fail(SocketCall::Send, error);
        ExpectFailure(Write(*stream, "x"), error);
        sockets_->Fail(SocketCall::Send, 0);
        sockets_->Arrive("last");
        loop_->BecomeReady({true, false});
        EXPECT_EQ(std::exchange(told_, ""), "R");
        EXPECT_EQ(Read(*stream).count, 4U);
    }
}

TEST_F(Net, TellsOnceWhenThereIsRoomAgain) {
    const auto stream = Connected();
    sockets_->Fail(SocketCall::Send, SocketCalls::kWouldBlock);
    EXPECT_EQ(Write(*stream, "x").kind, IoResult::Kind::WouldBlock);
    EXPECT_TRUE(loop_->WantsToWrite());
    loop_->BecomeReady({false, true});
    loop_->BecomeReady({false, true});
    EXPECT_EQ(told_, "W");
    EXPECT_FALSE(loop_->WantsToWrite());
}

TEST_F(Net, ReadsNothingWhenNothingHasArrivedAndTheEndOnce) {
    const auto stream = Connected();
    EXPECT_EQ(Read(*stream).kind, IoResult::Kind::WouldBlock);
    EXPECT_TRUE(loop_->WantsToRead());
    sockets_->EndOfPeer();
    EXPECT_EQ(Read(*stream).kind, IoResult::Kind::Ended);
    EXPECT_FALSE(loop_->WantsToRead());
}

TEST_F(Net, WritesNothingAfterTheLast) {
    const auto stream = Connected();
    stream->FinishWriting();
    stream->FinishWriting();
    EXPECT_EQ(sockets_->Shutdowns(), 1);
    ExpectFailure(Write(*stream, "x"), 10058);
    EXPECT_EQ(sockets_->Sent(), "");
}

TEST_F(Net, ClosesSoThatThePeerCanStillReadWhatWasWritten) {
    auto stream = Connected();
    sockets_->Arrive(std::string(100'000, 'x'));
    stream.reset();
    EXPECT_EQ(sockets_->Shutdowns(), 1);
    EXPECT_EQ(sockets_->Unread(), "");
    EXPECT_EQ(sockets_->OpenSockets(), 0);
}

TEST_F(Net, ClosesAListenerInItsPause) {
    auto listener = network_->Listen("", 7);
    listener->SetHandler([] {});
    sockets_->Fail(SocketCall::Accept, 10024);
    EXPECT_EQ(listener->Accept(nullptr), nullptr);
    listener.reset();
    loop_->Advance(Milliseconds(1000));
    EXPECT_EQ(sockets_->OpenSockets(), 0);
    EXPECT_EQ(loop_->WatchCount(), 0U);
}

TEST_F(Net, ClosesWhatItOpenedWhenAListenerFails) {
    for (const auto call :
         {SocketCall::Open, SocketCall::PrepareListener, SocketCall::Bind, SocketCall::Listen}) {
        for (const std::int32_t error : kErrors) {
            sockets_->Fail(call, error);
            EXPECT_EQ(ErrorOfListen("192.0.2.1"), error);
        }
        sockets_->Fail(call, 0);
    }
    EXPECT_EQ(sockets_->OpenSockets(), 0);
}

TEST_F(Net, ListensOnIPv4AloneWithoutIPv6) {
    for (const std::int32_t error : {10047, 10049}) {
        sockets_->LackIPv6(error);
        EXPECT_EQ(ErrorOfListen(), 0);
        EXPECT_EQ(sockets_->LastBound(), "0.0.0.0");
    }
    sockets_->LackIPv6(10013);
    EXPECT_EQ(ErrorOfListen(), 10013);
}

TEST_F(Net, PausesAListenerOnlyWhenThereIsNoRoom) {
    const auto listener = network_->Listen("", 7);
    listener->SetHandler([] {});
    for (const std::int32_t error : kErrors) {
        sockets_->Fail(SocketCall::Accept, error);
        std::int32_t reported = -1;
        EXPECT_EQ(listener->Accept(&reported), nullptr);
        const bool no_room = error == 10024 || error == 10055;
        EXPECT_EQ(reported, no_room ? error : 0);
        EXPECT_EQ(loop_->WantsToRead(), !no_room) << error;
        loop_->Advance(Milliseconds(100));
        EXPECT_TRUE(loop_->WantsToRead());
    }
}

TEST_F(Net, KnowsAnAcceptedPeerByTheAddressThatCameWithIt) {
    const auto stream = network_->Listen("", 7)->Accept(nullptr);
    EXPECT_EQ(stream->RemoteAddress(), "192.0.2.9");
    EXPECT_EQ(stream->RemotePort(), 1999);
}

TEST_F(Net, AcceptsWhatCanBeReadAtOnce) {
    const auto listener = network_->Listen("", 7);
    const auto stream = listener->Accept(nullptr);
    sockets_->Arrive("abc");
    EXPECT_EQ(Read(*stream).count, 3U);
    stream->SetKeepAlive(true);
    EXPECT_TRUE(sockets_->KeptAlive());
}

TEST_F(Net, TakesTheFirstAddressThatIsNotLoopbackForItsOwn) {
    sockets_->HasAddresses({"127.0.0.1", "192.0.2.7", "192.0.2.8"});
    EXPECT_EQ(network_->OwnAddress(), "192.0.2.7");
}

TEST_F(Net, IsReachedByLoopbackOnAMachineWithoutAnotherAddress) {
    EXPECT_EQ(network_->OwnAddress(), "127.0.0.1");
    sockets_->HasAddresses({"127.0.0.2"});
    EXPECT_EQ(network_->OwnAddress(), "127.0.0.1");
}

}  // namespace
}  // namespace kq
