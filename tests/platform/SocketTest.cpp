// TCP on loopback through the port: every ending of a connection attempt, both directions, and who may die
// when.
#include <algorithm>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "platform/PortTesting.h"
#include "platform/SocketTesting.h"

namespace kq {
namespace {

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

TEST_F(Sockets, SpeakIPv6OrTellThatTheMachineHasNone) {
    try {
        listener_ = network_->Listen("::1", 0);
    } catch (const Error& error) {
        EXPECT_EQ(error.Source(), "KQAppProtocolLib");
        EXPECT_THAT(error.Number(), testing::AnyOf(10047, 10049)) << "neither the family nor the address";
        EXPECT_FALSE(error.Description().empty());
        client_.Take(network_->Connect("::1", 1, ""));
        EXPECT_TRUE(Wait([&] { return client_.failed; }));
        EXPECT_NE(client_.error, 10022) << "the address itself is good";
        return;
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

TEST_F(Sockets, AreNoLongerOpenAfterAReset) {
    listener_ = network_->Listen("127.0.0.1", 0);
    listener_->SetHandler([this] { server_.Take(listener_->Accept(nullptr)); });
    RudePeer peer(listener_->LocalPort());
    ASSERT_TRUE(Wait([&] { return server_.stream != nullptr; }));
    peer.Reset();
    EXPECT_TRUE(Wait([&] { return server_.failed || server_.ended; }));
    EXPECT_EQ(server_.error, server_.failed ? 10054 : 0);
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

TEST_F(Sockets, OwnAddressIsANumericIPv4Address) {
    const std::string own = network_->OwnAddress();
    EXPECT_EQ(std::count(own.begin(), own.end(), '.'), 3);
    EXPECT_EQ(own.find_first_not_of("0123456789."), std::string::npos);
}

}  // namespace
}  // namespace kq
