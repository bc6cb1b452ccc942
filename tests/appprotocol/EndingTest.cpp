// Sending, limits, and every way a connection ends.
#include "appprotocol/APTesting.h"

namespace kq {
namespace {

class Sending : public ClientScene {};

TEST_F(Sending, WritesTheDocumentedFrames) {
    Connect();
    client_->SendText("<a/>", "t");
    client_->SendBytes("b");
    client_->SetSendType(DataType::Raw);
    client_->SendText("c");
    EXPECT_EQ(peer_->heard, "");
    Run();
    EXPECT_EQ(peer_->heard, XMLFrame("<a/>", "t") + RawFrame("b") + RawFrame("c"));
}

TEST_F(Sending, KeepsTheOrderOfSmallAndLargeBlocks) {
    Connect();
    const std::string large(300'000, 'L');
    client_->SendText("first");
    client_->SendBytes(large);
    client_->SendText("last");
    Run();
    EXPECT_EQ(peer_->heard, XMLFrame("first") + RawFrame(large) + XMLFrame("last"));
}

TEST_F(Sending, WaitsForAPeerThatReadsSlowly) {
    machine_.network->SetPipeSize(7);
    Connect();
    client_->SendText(std::string(1000, 'x'), "t");
    Run();
    EXPECT_EQ(peer_->heard, XMLFrame(std::string(1000, 'x'), "t"));
}

TEST_F(Sending, RaisesThatThereIsNoConnection) {
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendText("x"); }), 10057);
    Connect();
    PeerDrops();
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendText("x"); }), 10057);
}

TEST_F(Sending, RefusesATagThatIsTooLongOrMalformed) {
    Connect();
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendText("x", std::string(1024, 't')); }), 0);
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendText("x", std::string(1025, 't')); }), 10040);
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendText("x", "\xFF"); }), 10022);
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Sending, ClosesWhenMoreWouldWaitThanIsAllowed) {
    machine_.network->SetPipeSize(100);
    APLimits limits;
    limits.unsent = 1000;
    client_->SetLimits(limits);
    Connect();
    peer_->StopReading();
    client_->SendBytes(std::string(490, 'x'));
    Run();
    client_->SendBytes(std::string(590, 'x'));
    EXPECT_TRUE(client_->Connected());
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendBytes(""); }, &sentence_), 10055);
    EXPECT_NE(sentence_.find("1000 bytes"), std::string::npos);
    EXPECT_FALSE(client_->Connected());
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Sending, CountsOnlyWhatTheNetworkDoesNotTakeAtOnce) {
    APLimits limits;
    limits.unsent = 1000;
    client_->SetLimits(limits);
    Connect();
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendBytes(std::string(64 * 1024, 'x')); }), 0);
    Run();
    EXPECT_EQ(peer_->heard.size(), 64U * 1024 + 10);
}

TEST_F(Sending, SaysAtTheNextTurnThatTheConnectionIsBroken) {
    Connect();
    machine_.network->CutAll();
    EXPECT_EQ(NumberRaisedBy([&] { client_->SendBytes(std::string(100'000, 'x')); }), 0);
    EXPECT_EQ(heard_, "");
    Run();
    EXPECT_EQ(heard_, "error:10054 gone");
}

class Ending : public ClientScene {
 protected:
    std::string HeardAfter(const std::string& bytes) {
        Connect();
        PeerSends(bytes);
        return heard_;
    }
};

TEST_F(Ending, IsNoErrorWhenThePeerHasFinished) {
    Connect();
    PeerSends(XMLFrame("last"));
    PeerDrops();
    EXPECT_EQ(heard_, "xml:=last gone");
    EXPECT_FALSE(client_->Connected());
}

TEST_F(Ending, IsAnErrorInTheMiddleOfABlock) {
    Connect();
    PeerSends(XMLFrame("whole") + XMLFrame("half").substr(0, 12));
    PeerDrops();
    EXPECT_EQ(heard_, "xml:=whole error:10054 gone");
    EXPECT_EQ(sentence_, "The connection was closed in the middle of a block");
}

TEST_F(Ending, IsAnErrorWhenTheConnectionBreaks) {
    Connect();
    machine_.network->CutAll();
    Run();
    EXPECT_EQ(heard_, "error:10054 gone");
}

TEST_F(Ending, StillSendsWhatWaitsToAPeerThatHasFinished) {
    machine_.network->SetPipeSize(50);
    Connect();
    client_->SendBytes(std::string(1000, 'x'));
    peer_->FinishSending();
    Run();
    EXPECT_EQ(peer_->heard.size(), 1010U);
    EXPECT_TRUE(peer_->heard_end);
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Ending, ComesAfterTheBlocksBeforeGarbage) {
    EXPECT_EQ(HeardAfter(XMLFrame("good") + "garbage" + XMLFrame("never")), "xml:=good error:10053 gone");
    Run();
    EXPECT_TRUE(peer_->heard_end);
}

TEST_F(Ending, ComesWithAnotherVersion) {
    EXPECT_EQ(HeardAfter("KQ\x02"), "error:10053 gone");
}

TEST_F(Ending, ComesWithALongTagAndSaysHowLong) {
    EXPECT_EQ(HeardAfter(RawFrame("", std::string(1025, 't'))), "error:10040 gone");
    EXPECT_NE(sentence_.find("1025 bytes"), std::string::npos);
}

TEST_F(Ending, ComesWithALongBlockAndNotWithOneOfTheLimit) {
    APLimits limits;
    limits.admitted_frame = 100;
    limits.raw_frame = 200;
    client_->SetLimits(limits);
    EXPECT_EQ(HeardAfter(XMLFrame(std::string(100, 'x')) + RawFrame(std::string(200, 'r'))).size(), 311U);
    heard_.clear();
    PeerSends(XMLFrame(std::string(101, 'x')));
    EXPECT_EQ(heard_, "error:10040 gone");
}

TEST_F(Ending, ComesOnceForEachConnectionInOrder) {
    Connect();
    client_->Disconnect();
    Connect();
    client_->Disconnect();
    client_->Disconnect();
    Run();
    EXPECT_EQ(heard_, "gone gone");
}

TEST_F(Ending, IsNotRaisedFromInsideDisconnect) {
    Connect();
    client_->Disconnect();
    EXPECT_EQ(heard_, "");
    EXPECT_FALSE(client_->Connected());
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Ending, DropsTheBlocksThatWaitWhenItIsOurs) {
    ConnectTaking();
    PeerSends(XMLFrame("a") + XMLFrame("b"));
    client_->Disconnect();
    EXPECT_EQ(TakeError(100), 10057);
    EXPECT_EQ(heard_, "");
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Ending, DropsTheRestWhenAHandlerDisconnects) {
    Connect();
    client_->Receive.Connect(owner_, [&](const Block&) { client_->Disconnect(); });
    PeerSends(XMLFrame("a") + XMLFrame("b"));
    EXPECT_EQ(heard_, "xml:=a gone");
}

TEST_F(Ending, WritesWhatWaitsInTheBackground) {
    machine_.network->SetPipeSize(50);
    Connect();
    client_->SendBytes(std::string(1000, 'x'));
    client_->Disconnect();
    Run();
    EXPECT_EQ(peer_->heard.size(), 1010U);
    EXPECT_TRUE(peer_->heard_end);
    EXPECT_EQ(machine_.network->OpenStreams(), 2U);
    PeerDrops();
    EXPECT_EQ(machine_.network->OpenStreams(), 0U);
}

TEST_F(Ending, GivesUpWritingAfterASecond) {
    machine_.network->SetPipeSize(50);
    Connect();
    peer_->StopReading();
    client_->SendBytes(std::string(1000, 'x'));
    client_->Disconnect();
    machine_.loop->Advance(Milliseconds(999));
    EXPECT_EQ(machine_.network->OpenStreams(), 2U);
    machine_.loop->Advance(Milliseconds(1));
    EXPECT_EQ(machine_.network->OpenStreams(), 1U);
}

TEST_F(Ending, ReadsThePeersRestAwayBeforeItCloses) {
    Connect();
    client_->SendText("refused");
    client_->Disconnect();
    PeerSends(std::string(30'000, 'x'));
    PeerSends("more");
    EXPECT_EQ(peer_->heard, XMLFrame("refused"));
    EXPECT_FALSE(peer_->heard_reset);
}

TEST_F(Ending, WritesWhatWaitsWhenTheObjectGoes) {
    Connect();
    client_->SendText("last");
    client_.reset();
    Run();
    EXPECT_EQ(peer_->heard, XMLFrame("last"));
    EXPECT_TRUE(peer_->heard_end);
    EXPECT_EQ(heard_, "");
}

TEST_F(Ending, ClosesAtOnceWhenTheLoopHasQuit) {
    Connect();
    client_->SendText("last");
    machine_.loop->Quit();
    client_.reset();
    EXPECT_EQ(machine_.network->OpenStreams(), 1U);
    Run();
    EXPECT_EQ(peer_->heard, XMLFrame("last"));
}

class Dropping : public ClientScene {
 protected:
    void Drop() { client_.reset(); }
};

TEST_F(Dropping, InsideReceiveEndsQuietly) {
    Connect();
    client_->Receive.Connect(owner_, [this](const Block&) { Drop(); });
    PeerSends(XMLFrame("a") + XMLFrame("b"));
    EXPECT_EQ(heard_, "xml:=a xml:=b");
    EXPECT_TRUE(peer_->heard_end);
}

TEST_F(Dropping, InsideProgressEndsQuietly) {
    Connect();
    client_->Progress.Connect(owner_, [this](const std::string&, std::int64_t, std::int64_t) { Drop(); });
    PeerSends(XMLFrame("abc").substr(0, 12));
    EXPECT_TRUE(peer_->heard_end);
}

TEST_F(Dropping, InsideErrorEndsQuietly) {
    Connect();
    client_->Error.Connect(owner_, [this](std::int32_t, const std::string&) { Drop(); });
    PeerSends("garbage");
    EXPECT_EQ(heard_, "error:10053 gone");
}

TEST_F(Dropping, InsideDisconnectedEndsQuietly) {
    Connect();
    client_->Disconnected.Connect(owner_, [this] { Drop(); });
    PeerDrops();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Dropping, DuringATakeLetsTheCallFinish) {
    ConnectTaking();
    APClient& client = *client_;
    After(10, [&] { Drop(); });
    After(20, [&] { peer_->Send(XMLFrame("a")); });
    EXPECT_EQ(client.TakeBlock(100).data, "a");
    Run();
    EXPECT_TRUE(peer_->heard_end);
}

TEST_F(Dropping, ReceivesInsideAReceiveHandlerThatWaits) {
    Connect();
    std::string taken;
    client_->Receive.Connect(owner_, [&](const Block& block) {
        if (block.data == "a") taken = client_->TakeBlock(100).data;
    });
    PeerSends(XMLFrame("a") + XMLFrame("b") + XMLFrame("c"));
    EXPECT_EQ(taken, "b");
    EXPECT_EQ(heard_, "xml:=a xml:=c");
}

}  // namespace
}  // namespace kq
