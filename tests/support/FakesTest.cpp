// The fakes keep the promises that tests build on: the order of virtual time, and TCP's manners without
// sockets.
#include <gtest/gtest.h>

#include "support/FakePlatform.h"

namespace kq {
namespace {

class FakeLoop : public testing::Test {
 protected:
    void Note(const std::string& word) { heard_ += word; }
    FakeEventLoop loop_;
    std::string heard_;
};

TEST_F(FakeLoop, RunsTimersByDueTimeAndJumpsThere) {
    const auto start = loop_.Now();
    loop_.StartTimer(Milliseconds(20), [&] { Note("b"); });
    loop_.StartTimer(Milliseconds(10), [&] { Note("a"); });
    loop_.Post([&] { Note("0"); });
    EXPECT_TRUE(loop_.RunUntil([&] { return heard_ == "0ab"; }, start + Milliseconds(1000)));
    EXPECT_EQ(loop_.Now(), start + Milliseconds(20));
}

TEST_F(FakeLoop, StandsAtTheDeadlineWhenNothingHappens) {
    const auto deadline = loop_.Now() + Milliseconds(10000);
    EXPECT_FALSE(loop_.RunUntil([] { return false; }, deadline));
    EXPECT_EQ(loop_.Now(), deadline);
}

TEST_F(FakeLoop, ThrowsInsteadOfWaitingForEver) {
    EXPECT_THROW(loop_.Run(), FakeFailure);
    std::function<void()> again = [&] { loop_.Post(again); };
    again();
    loop_.SetStepLimit(100);
    EXPECT_THROW(loop_.RunReady(), FakeFailure);
}

TEST_F(FakeLoop, CancelsATimerThatIsAlreadyDue) {
    EventLoop::TimerId second = 0;
    loop_.StartTimer(Milliseconds(1), [&] { loop_.CancelTimer(second); });
    second = loop_.StartTimer(Milliseconds(1), [&] { Note("never"); });
    loop_.Advance(Milliseconds(1));
    EXPECT_EQ(heard_, "");
}

TEST_F(FakeLoop, LeavesToTheNextCallWhatBecomesReadyWhilePending) {
    loop_.Post([&] { loop_.Post([&] { Note("later"); }); });
    loop_.ProcessPending();
    EXPECT_EQ(heard_, "");
    loop_.ProcessPending();
    EXPECT_EQ(heard_, "later");
}

TEST(FakeClock, WrapsAtMidnight) {
    FakePlatform machine;
    machine.clock->SetTimeOfDay(86399.5);
    machine.loop->Advance(Milliseconds(1000));
    EXPECT_DOUBLE_EQ(machine.clock->SecondsSinceMidnight(), 0.5);
}

class FakeConnection : public testing::Test {
 protected:
    void Stand(std::size_t split = 0) {
        machine_.network->Split(split);
        listener_ = machine_.network->Listen("10.0.0.5", 7000);
        client_ = machine_.network->Connect("10.0.0.5", 7000, "");
        client_->SetHandler([this](SocketEvent event) { OnClient(event); });
        machine_.loop->RunReady();
        std::int32_t error = 0;
        server_ = listener_->Accept(&error);
        ASSERT_TRUE(server_);
    }
    void OnClient(SocketEvent event) {
        if (event == SocketEvent::Connected) heard_ += "connected ";
        if (event == SocketEvent::Failed) heard_ += "failed" + std::to_string(client_->LastError()) + " ";
        if (event == SocketEvent::Writable) heard_ += "writable ";
        if (event == SocketEvent::Readable) heard_ += Take(*client_) + " ";
    }
    static std::string Take(StreamSocket& stream) {
        std::string text;
        std::byte buffer[100];
        for (;;) {
            const IoResult result = stream.Read(buffer);
            if (result.kind == IoResult::Kind::Ended) return text + "$";
            if (result.kind == IoResult::Kind::Failed) return text + "!" + std::to_string(result.error);
            if (result.kind == IoResult::Kind::WouldBlock) return text;
            text.append(reinterpret_cast<const char*>(buffer), result.count);
        }
    }
    static IoResult Send(StreamSocket& stream, const std::string& text) {
        return stream.Write(std::as_bytes(std::span(text)));
    }

    FakePlatform machine_;
    std::unique_ptr<ListenSocket> listener_;
    std::unique_ptr<StreamSocket> client_, server_;
    std::string heard_;
};

TEST_F(FakeConnection, CarriesBytesAndThenTheEnd) {
    Stand();
    Send(*server_, "abc");
    server_.reset();
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "connected abc$ ");
}

TEST_F(FakeConnection, SplitsByteByByte) {
    Stand(1);
    Send(*server_, "abc");
    server_->FinishWriting();
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "connected a b c$ ");
}

TEST_F(FakeConnection, IsRefusedWhereNobodyListens) {
    client_ = machine_.network->Connect("10.0.0.6", 1, "");
    client_->SetHandler([this](SocketEvent event) { OnClient(event); });
    EXPECT_EQ(heard_, "");
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "failed10061 ");
}

TEST_F(FakeConnection, NeverEndsInABlackHole) {
    machine_.network->BlackHole("10.0.0.6", 1);
    client_ = machine_.network->Connect("10.0.0.6", 1, "");
    client_->SetHandler([this](SocketEvent event) { OnClient(event); });
    machine_.loop->Advance(Milliseconds(1000000));
    EXPECT_EQ(heard_, "");
}

TEST_F(FakeConnection, TellsBothSidesOfACut) {
    Stand();
    Send(*server_, "lost");
    machine_.network->Cut(*server_);
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "connected !10054 ");
    EXPECT_EQ(Send(*server_, "x").error, 10054);
}

TEST_F(FakeConnection, SaysWhenThereIsRoomAgain) {
    machine_.network->SetPipeSize(4);
    Stand();
    EXPECT_EQ(Send(*client_, "abcdef").count, 4U);
    EXPECT_EQ(Send(*client_, "ef").kind, IoResult::Kind::WouldBlock);
    EXPECT_EQ(Take(*server_), "abcd");
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "connected writable ");
}

TEST_F(FakeConnection, HoldsBytesBackWhileReadingIsOff) {
    Stand();
    client_->SetReading(false);
    Send(*server_, "abc");
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "connected ");
    client_->SetReading(true);
    machine_.loop->RunReady();
    EXPECT_EQ(heard_, "connected abc ");
}

TEST_F(FakeConnection, MayBeDestroyedInItsOwnHandler) {
    Stand();
    client_->SetHandler([this](SocketEvent) { client_.reset(); });
    Send(*server_, "abc");
    machine_.loop->RunReady();
    EXPECT_EQ(Take(*server_), "$");
}

TEST_F(FakeConnection, RefusesAnAddressInUse) {
    Stand();
    EXPECT_THROW(machine_.network->Listen("10.0.0.5", 7000), Error);
    listener_.reset();
    EXPECT_NO_THROW(machine_.network->Listen("10.0.0.5", 7000));
}

TEST(FakeDialogs, RememberWhatWasAsked) {
    FakePlatform machine;
    machine.dialogs->Answer(BoxButton::No);
    EXPECT_EQ(machine.dialogs->ShowMessageBox("Again?", "Title", BoxStyle::YesNo), BoxButton::No);
    EXPECT_EQ(machine.dialogs->LastBox().caption, "Title");
    EXPECT_THROW(machine.dialogs->ShowMessageBox("Again?", "Title", BoxStyle::YesNo), FakeFailure);
    EXPECT_EQ(machine.dialogs->TakeUnexpected(), 1U);
}

TEST(FakeSettings, ReadLikeAProfile) {
    FakePlatform machine;
    auto& file = *machine.profile_file;
    EXPECT_TRUE(file.Write("Default", "Key", "  'quoted' ", "/a.ini"));
    EXPECT_EQ(file.Read("DEFAULT", "KEY", "x", 1024, "/a.ini"), "quoted");
    EXPECT_EQ(file.Read("DEFAULT", "KEY", "x", 4, "/a.ini"), "quo");
    EXPECT_EQ(file.Read("Other", "Key", "none  ", 1024, "/a.ini"), "none");
}

TEST(FakeHash, DependsOnKeyAndText) {
    const FakeCrypto crypto;
    const auto hash = crypto.HmacSha256Hex("key", "text");
    EXPECT_EQ(hash.size(), 64U);
    EXPECT_NE(hash, crypto.HmacSha256Hex("Key", "text"));
    EXPECT_NE(hash, crypto.HmacSha256Hex("key", "Text"));
    EXPECT_EQ(hash, crypto.HmacSha256Hex("key", "text"));
}

}  // namespace
}  // namespace kq
