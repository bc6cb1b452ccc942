// How blocks reach the host: as events, by calls that wait, and the switch between the two.
#include "appprotocol/APTesting.h"

namespace kq {
namespace {

class Receiving : public ClientScene {};

TEST_F(Receiving, RaisesOneEventForEachBlockInOrder) {
    Connect();
    PeerSends(XMLFrame("a", "t1") + RawFrame("b") + XMLFrame(""));
    EXPECT_EQ(heard_, "xml:t1=a raw:=b xml:=");
}

TEST_F(Receiving, PutsFramesTogetherThatArriveByteByByte) {
    machine_.network->Split(1);
    Connect();
    PeerSends(XMLFrame("hello", "tag") + RawFrame("x"));
    EXPECT_EQ(heard_, "xml:tag=hello raw:=x");
}

TEST_F(Receiving, DropsBlocksOfAnotherTypeThanWanted) {
    Connect();
    client_->SetReceiveType(DataType::XML);
    PeerSends(RawFrame("r") + XMLFrame("x"));
    client_->SetReceiveType(DataType::Raw);
    PeerSends(RawFrame("r") + XMLFrame("x"));
    EXPECT_EQ(heard_, "xml:=x raw:=r");
}

TEST_F(Receiving, HandsOnBlocksOfTypesItDoesNotKnow) {
    Connect();
    std::vector<int> types;
    client_->Receive.Connect(owner_,
                             [&](const Block& block) { types.push_back(static_cast<int>(block.data_type)); });
    const std::string blocks = FrameOf(1, "", "a") + FrameOf(64, "", "b") + FrameOf(255, "", "c");
    PeerSends(blocks);
    EXPECT_EQ(types, (std::vector{1, 64, 255}));
    client_->SetReceiveType(DataType::Raw);
    PeerSends(blocks);
    client_->SetReceiveType(DataType::XML);
    PeerSends(blocks);
    EXPECT_EQ(types.size(), 3U);
}

TEST_F(Receiving, TakerGetsABlockOfATypeThatIsNotKnown) {
    ConnectTaking();
    PeerSends(FrameOf(17, "t", "data"));
    const Block block = client_->TakeBlock(100);
    EXPECT_EQ(static_cast<int>(block.data_type), 17);
    EXPECT_EQ(block.tag + block.data, "tdata");
}

TEST_F(Receiving, ReportsTheProgressOfABlockThatTakesItsTime) {
    NoteProgress();
    Connect();
    const std::string frame = RawFrame("0123456789", "file");
    PeerSends(frame.substr(0, 14));
    EXPECT_EQ(heard_, "");
    PeerSends(frame.substr(14, 3));
    PeerSends(frame.substr(17, 2));
    PeerSends(frame.substr(19) + RawFrame("next"));
    EXPECT_EQ(heard_, "file:3/10 file:5/10 file:10/10 raw:file=0123456789 raw:=next");
}

TEST_F(Receiving, ReportsNoProgressOfWhatIsNotWanted) {
    NoteProgress();
    client_->SetReceiveType(DataType::XML);
    Connect();
    PeerSends(RawFrame("0123456789").substr(0, 15));
    EXPECT_EQ(heard_, "");
}

TEST_F(Receiving, ReportsProgressToATakerToo) {
    NoteProgress();
    ConnectTaking();
    PeerSends(RawFrame("0123456789", "f").substr(0, 15));
    PeerSends(RawFrame("0123456789", "f").substr(15));
    EXPECT_EQ(heard_, "f:4/10 f:10/10");
}

TEST_F(Receiving, KeepsBlocksForTheTaker) {
    ConnectTaking();
    PeerSends(XMLFrame("a") + RawFrame("b", "t"));
    EXPECT_EQ(heard_, "");
    EXPECT_EQ(client_->TakeBlock(100).data, "a");
    const Block second = client_->TakeBlock(100);
    EXPECT_EQ(second.data + second.tag, "bt");
    EXPECT_EQ(second.data_type, DataType::Raw);
}

TEST_F(Receiving, TakerWaitsForABlockThatComesLater) {
    ConnectTaking();
    After(30, [&] { peer_->Send(XMLFrame("late")); });
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(client_->TakeBlock(100).data, "late"); }), 30);
}

TEST_F(Receiving, TakerTimesOut) {
    ConnectTaking();
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(TakeError(250), 10060); }), 250);
    EXPECT_EQ(sentence_, "The connection timed out");
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(TakeError(0), 10060); }), 10'000);
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Receiving, TakerHasNothingToTakeWithoutConnection) {
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(TakeError(250), 10057); }), 0);
}

TEST_F(Receiving, TakerGetsTheNextBlockInEventsModeAsWell) {
    Connect();
    After(10, [&] { peer_->Send(XMLFrame("one") + XMLFrame("two")); });
    EXPECT_EQ(client_->TakeBlock(100).data, "one");
    Run();
    EXPECT_EQ(heard_, "xml:=two");
}

TEST_F(Receiving, EndsAWaitAtOnceWhenThePeerDrops) {
    ConnectTaking();
    After(20, [&] { peer_.reset(); });
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(TakeError(1000), 10054); }), 20);
    EXPECT_EQ(sentence_, "The connection was closed by the other side");
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Receiving, TellsTheWaitingCallOfAResetAndNobodyElse) {
    ConnectTaking();
    After(20, [&] { machine_.network->CutAll(); });
    EXPECT_EQ(TakeError(1000), 10054);
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Receiving, EndsAWaitAtOnceAtOurOwnDisconnect) {
    ConnectTaking();
    After(20, [&] { client_->Disconnect(); });
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(TakeError(1000), 10053); }), 20);
    EXPECT_EQ(TakeError(1000), 10057);
}

TEST_F(Receiving, EndsTheWaitOnTheOldConnectionWhenANewOneIsMade) {
    ConnectTaking();
    After(20, [&] { Connect(); });
    EXPECT_EQ(TakeError(1000), 10053);
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Receiving, IsInterruptedWhenTheLoopQuits) {
    ConnectTaking();
    After(20, [&] { machine_.loop->Quit(); });
    EXPECT_EQ(TakeError(1000), 10004);
}

TEST_F(Receiving, LetsTheInnerOfTwoWaitsTakeFirst) {
    ConnectTaking();
    std::string inner;
    After(10, [&] { inner = client_->TakeBlock(1000).data; });
    After(20, [&] { peer_->Send(XMLFrame("first") + XMLFrame("second")); });
    EXPECT_EQ(client_->TakeBlock(1000).data, "second");
    EXPECT_EQ(inner, "first");
}

TEST_F(Receiving, LetsBlocksBeTakenThatCameBeforeTheEnd) {
    ConnectTaking();
    PeerSends(XMLFrame("a") + XMLFrame("b"));
    PeerDrops();
    EXPECT_FALSE(client_->Connected());
    EXPECT_EQ(heard_, "");
    EXPECT_EQ(client_->TakeBlock(100).data, "a");
    EXPECT_EQ(client_->TakeBlock(100).data, "b");
    EXPECT_EQ(TakeError(100), 10054);
    EXPECT_EQ(TakeError(100), 10057);
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST_F(Receiving, DeliversTheWaitingBlocksWhenTheModeBecomesEvents) {
    ConnectTaking();
    PeerSends(XMLFrame("a") + XMLFrame("b"));
    client_->SetReceiveMode(ReceiveMode::Events);
    EXPECT_EQ(heard_, "");
    PeerSends(XMLFrame("c"));
    EXPECT_EQ(heard_, "xml:=a xml:=b xml:=c");
}

TEST_F(Receiving, DeliversTheEndAfterTheBlocksWhenTheModeBecomesEvents) {
    ConnectTaking();
    PeerSends(XMLFrame("a"));
    machine_.network->CutAll();
    Run();
    client_->SetReceiveMode(ReceiveMode::Events);
    Run();
    EXPECT_EQ(heard_, "xml:=a error:10054 gone");
}

TEST_F(Receiving, StopsDeliveringWhenAHandlerChangesToTake) {
    Connect();
    client_->Receive.Connect(owner_, [&](const Block&) { client_->SetReceiveMode(ReceiveMode::Take); });
    PeerSends(XMLFrame("a") + XMLFrame("b"));
    EXPECT_EQ(heard_, "xml:=a");
    EXPECT_EQ(client_->TakeBlock(100).data, "b");
}

TEST_F(Receiving, StopsReadingWhen256BlocksWaitAndGoesOnWhenTaken) {
    ConnectTaking();
    std::string many;
    for (int i = 0; i < 256; ++i)
        many += RawFrame("");
    PeerSends(many);
    PeerSends(RawFrame("behind"));
    PeerDrops();
    EXPECT_TRUE(client_->Connected());
    for (int i = 0; i < 256; ++i)
        client_->TakeBlock(100);
    EXPECT_EQ(client_->TakeBlock(100).data, "behind");
}

TEST_F(Receiving, StopsReadingWhenMoreThanFourFullFramesWait) {
    APLimits limits;
    limits.admitted_frame = 1000;
    client_->SetLimits(limits);
    ConnectTaking();
    for (int i = 0; i < 4; ++i)
        PeerSends(XMLFrame(std::string(1000, 'x')));
    PeerSends(XMLFrame("5"));
    PeerSends(XMLFrame("6"));
    PeerDrops();
    EXPECT_TRUE(client_->Connected());
    client_->TakeBlock(100);
    Run();
    EXPECT_FALSE(client_->Connected());
}

TEST_F(Receiving, RefusesSettingsThatAreNone) {
    const auto wrong = NumberOf(RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(NumberRaisedBy([&] { client_->SetSendType(DataType::Any); }), wrong);
    EXPECT_EQ(NumberRaisedBy([&] { client_->SetReceiveType(static_cast<DataType>(1)); }), wrong);
    EXPECT_EQ(NumberRaisedBy([&] { client_->SetReceiveMode(static_cast<ReceiveMode>(2)); }), wrong);
}

class Requesting : public ClientScene {
 protected:
    XMLMessage Ask(std::int32_t time_out = 1000) {
        return client_->Request(XMLMessage("ASLoginRequest", "1"), "t", time_out);
    }
};

TEST_F(Requesting, SendsAFrameAndTakesTheAnswer) {
    ConnectTaking();
    XMLMessage answer("ASLoginResponse", "1");
    answer.SetField("ErrorNumber", "0");
    After(10, [&] { peer_->Send(XMLFrame(answer.ToXML(), "t")); });
    EXPECT_EQ(Ask(), answer);
    EXPECT_EQ(peer_->heard, XMLFrame(XMLMessage("ASLoginRequest", "1").ToXML(), "t"));
}

TEST_F(Requesting, RaisesThatTheAnswerIsNoMessage) {
    ConnectTaking();
    const std::string message = XMLMessage("ASLoginResponse", "1").ToXML();
    for (const auto& answer : {XMLFrame("<other/>", "t"), RawFrame(message, "t"), FrameOf(1, "t", message)}) {
        After(10, [&] { peer_->Send(answer); });
        EXPECT_EQ(NumberRaisedBy([&] { Ask(); }), XMLMessage::kNotAMessage);
    }
}

TEST_F(Requesting, WithoutATagTakesTheNextBlock) {
    ConnectTaking();
    const XMLMessage answer("ASLoginResponse", "1");
    After(10, [&] { peer_->Send(XMLFrame(answer.ToXML(), "any")); });
    EXPECT_EQ(client_->Request(XMLMessage("ASLoginRequest", "1"), "", 1000), answer);
}

TEST_F(Requesting, TakesTheBlockWithItsTagAndKeepsTheOthersForTheTaker) {
    ConnectTaking();
    const XMLMessage answer("ASLoginResponse", "1");
    PeerSends(XMLFrame("before", "t"));
    After(10, [&] { peer_->Send(XMLFrame("a", "u") + XMLFrame("b") + XMLFrame(answer.ToXML(), "t")); });
    EXPECT_EQ(Ask(), answer);
    EXPECT_EQ(client_->TakeBlock(100).data, "before");
    EXPECT_EQ(client_->TakeBlock(100).data, "a");
    EXPECT_EQ(client_->TakeBlock(100).data, "b");
    EXPECT_EQ(TakeError(100), 10060);
}

TEST_F(Requesting, LeavesTheBlocksWithAnotherTagToTheEvents) {
    Connect();
    After(10, [&] { peer_->Send(XMLFrame("push", "u")); });
    After(20, [&] {
        EXPECT_EQ(heard_, "xml:u=push");
        peer_->Send(XMLFrame(XMLMessage("ASLoginResponse", "1").ToXML(), "t"));
    });
    EXPECT_EQ(TimeOf([&] { Ask(); }), 20);
    Run();
    EXPECT_EQ(heard_, "xml:u=push");
}

TEST_F(Requesting, IsAnsweredByItsTagWhateverTheOrder) {
    Connect();
    const auto answer = [](const char* type) { return XMLMessage(type, "1"); };
    std::string inner;
    After(10, [&] { inner = client_->Request(answer("B"), "b", 1000).Type(); });
    After(20, [&] {
        peer_->Send(XMLFrame(answer("ForT").ToXML(), "t") + XMLFrame(answer("ForB").ToXML(), "b"));
    });
    EXPECT_EQ(Ask().Type(), "ForT");
    EXPECT_EQ(inner, "ForB");
    EXPECT_EQ(heard_, "");
}

TEST_F(Requesting, IsNotAnsweredToATakerThatWaitsInsideIt) {
    ConnectTaking();
    std::string taken;
    After(10, [&] { taken = client_->TakeBlock(1000).data; });
    After(20, [&] { peer_->Send(XMLFrame(XMLMessage("ForT", "1").ToXML(), "t") + XMLFrame("next")); });
    EXPECT_EQ(Ask().Type(), "ForT");
    EXPECT_EQ(taken, "next");
}

TEST_F(Requesting, LeavesAnAnswerThatComesTooLateToTheTaker) {
    ConnectTaking();
    After(200, [&] { peer_->Send(XMLFrame("late", "t")); });
    EXPECT_EQ(NumberRaisedBy([&] { Ask(100); }), 10060);
    EXPECT_EQ(client_->TakeBlock(1000).data, "late");
}

TEST_F(Requesting, TimesOutWithoutAnAnswer) {
    ConnectTaking();
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(NumberRaisedBy([&] { Ask(700); }), 10060); }), 700);
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(NumberRaisedBy([&] { Ask(0); }), 10060); }), 10'000);
    EXPECT_EQ(TimeOf([&] { EXPECT_EQ(NumberRaisedBy([&] { Ask(-1); }), 10060); }), 10'000);
}

TEST_F(Requesting, RaisesThatThereIsNoConnection) {
    EXPECT_EQ(NumberRaisedBy([&] { Ask(); }), 10057);
    ConnectTaking();
    After(10, [&] { peer_.reset(); });
    EXPECT_EQ(NumberRaisedBy([&] { Ask(); }), 10054);
}

TEST_F(Requesting, LearnsOfAResetInsteadOfTheErrorEvent) {
    Connect();
    After(10, [&] { machine_.network->CutAll(); });
    EXPECT_EQ(NumberRaisedBy([&] { Ask(); }), 10054);
    Run();
    EXPECT_EQ(heard_, "gone");
}

TEST(APClientWithoutAPlatform, IsRefused) {
    EXPECT_EQ(NumberRaisedBy([] { APClient::Create(nullptr); }), NumberOf(RuntimeError::ObjectNotSet));
    EXPECT_EQ(NumberRaisedBy([] { Listener::Create(nullptr); }), NumberOf(RuntimeError::ObjectNotSet));
}

}  // namespace
}  // namespace kq
