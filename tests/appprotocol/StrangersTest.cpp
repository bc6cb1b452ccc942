// What peers may take that have not been admitted: time, places, memory.
#include <algorithm>

#include "appprotocol/APTesting.h"

namespace kq {
namespace {

class StrangersTime : public ListenerScene {
 protected:
    void Pass(int seconds) { machine_.loop->Advance(std::chrono::seconds(seconds)); }
    std::unique_ptr<RawPeer> CallWithin(int seconds) {
        ListenWith({.proof = std::chrono::seconds(seconds)});
        auto caller = Call();
        Heard();
        return caller;
    }
};

TEST_F(StrangersTime, DoesNotEndWithABlock) {
    const auto caller = CallWithin(20);
    Sends(*caller, XMLFrame("a"));
    Pass(19);
    EXPECT_EQ(Heard(), "=a");
    Pass(1);
    EXPECT_EQ(Heard(), "client-error:10060 gone");
    EXPECT_EQ(sentence_, "The connection was not admitted in time");
    EXPECT_TRUE(caller->heard_end);
}

TEST_F(StrangersTime, EndsWithAdmission) {
    const auto caller = CallWithin(20);
    accepted_[0]->Admit();
    Pass(1000);
    EXPECT_EQ(Heard(), "");
}

TEST_F(StrangersTime, CanBeStoppedAndStartedAnew) {
    const auto caller = CallWithin(20);
    Sends(*caller, XMLFrame("a"));
    accepted_[0]->SetDeadline(Milliseconds(0));
    Pass(1000);
    EXPECT_TRUE(accepted_[0]->Connected());
    accepted_[0]->SetDeadline(Milliseconds(5000));
    Pass(4);
    EXPECT_TRUE(accepted_[0]->Connected());
    Pass(1);
    EXPECT_FALSE(accepted_[0]->Connected());
}

TEST_F(StrangersTime, IsNotForThoseWhoAreAdmitted) {
    const auto caller = CallWithin(20);
    accepted_[0]->Admit();
    accepted_[0]->SetDeadline(Milliseconds(5000));
    Pass(1000);
    EXPECT_TRUE(accepted_[0]->Connected());
}

TEST_F(StrangersTime, EndsWithTheConnection) {
    const auto caller = CallWithin(20);
    accepted_[0]->Disconnect();
    Pass(1);
    accepted_[0]->SetDeadline(Milliseconds(5000));
    Pass(1000);
    EXPECT_EQ(Heard(), "gone");
}

class StrangersPlaces : public ListenerScene {
 protected:
    std::size_t Standing() const {
        return static_cast<std::size_t>(
            std::ranges::count_if(accepted_, [](const auto& client) { return client->Connected(); }));
    }
};

TEST_F(StrangersPlaces, AreLimitedForEachAddress) {
    listener_->SetMaxUnadmittedPerAddress(2);
    Listen();
    const auto crowd = Call(3, "10.1.1.1");
    EXPECT_EQ(Heard(), "accepted accepted client-error:10024");
    EXPECT_EQ(sentence_, "The limit of 2 connections of 10.1.1.1 that are not admitted has been reached");
    EXPECT_TRUE(crowd[2]->heard_end);
    const auto other = Call("10.1.1.2");
    EXPECT_EQ(Heard(), "accepted");
}

TEST_F(StrangersPlaces, AreFreeAgainAfterAdmissionAndAfterTheEnd) {
    listener_->SetMaxUnadmittedPerAddress(2);
    Listen();
    auto crowd = Call(2, "10.1.1.1");
    accepted_[0]->Admit();
    crowd[1].reset();
    Run();
    Heard();
    const auto more = Call(3, "10.1.1.1");
    EXPECT_EQ(Heard(), "accepted accepted client-error:10024");
}

TEST_F(StrangersPlaces, AreLimitedForEachNetworkOfIPv6) {
    listener_->SetMaxUnadmittedPerAddress(1);
    Listen();
    const auto one = Call("2001:db8::1");
    Heard();
    const auto neighbour = Call("2001:db8::ffff:2:3:4");
    const auto same = Call("2001:db8:0:0:5::");
    EXPECT_EQ(Heard(), "client-error:10024 client-error:10024");
    const auto others = {Call("2001:db8:0:1::1"), Call("::1"), Call("::ffff:10.1.1.1"), Call("10.1.1.2")};
    EXPECT_EQ(Heard(), "accepted accepted accepted accepted");
    const auto mapped = Call("10.1.1.1");
    EXPECT_EQ(Heard(), "client-error:10024");
}

TEST_F(StrangersPlaces, AreHalfOfAllForOneAddressUnlessSet) {
    EXPECT_EQ(listener_->MaxUnadmittedPerAddress(), 10'000);
    listener_->SetMaxClients(2'000);
    EXPECT_EQ(listener_->MaxUnadmittedPerAddress(), 1'000);
    listener_->SetMaxClients(10);
    EXPECT_EQ(listener_->MaxUnadmittedPerAddress(), 64);
}

TEST_F(StrangersPlaces, AreLostToOthersByTheOldestOfTheAddressThatHasMost) {
    listener_->SetMaxClients(21);
    Listen();
    const auto few = Call(4, "10.1.1.2");
    const auto crowd = Call(17, "10.1.1.1");
    Heard();
    const auto newcomer = Call("10.1.1.3");
    EXPECT_EQ(Heard(), "accepted client-error:10024 gone");
    EXPECT_TRUE(crowd[0]->heard_end);
    EXPECT_EQ(Standing(), 21U);
    EXPECT_FALSE(newcomer->heard_end);
}

TEST_F(StrangersPlaces, AreNotLostWhenAllAreAdmitted) {
    listener_->SetMaxClients(20);
    Listen();
    const auto crowd = Call(20, "10.1.1.1");
    for (const auto& client : accepted_)
        client->Admit();
    Heard();
    const auto newcomer = Call("10.1.1.3");
    EXPECT_EQ(Heard(), "client-error:10024");
    EXPECT_EQ(Standing(), 20U);
}

TEST_F(StrangersPlaces, AreLostWhenTheMachineHasNoMoreSockets) {
    Listen();
    const auto crowd = Call(20, "10.1.1.1");
    Heard();
    machine_.network->FailNextAccept(10024);
    const auto newcomer = Call("10.1.1.3");
    EXPECT_EQ(Heard(), "accepted client-error:10024 gone");
    EXPECT_TRUE(crowd[0]->heard_end);
    EXPECT_FALSE(crowd[1]->heard_end);
}

class StrangersMemory : public ListenerScene {
 protected:
    static std::string Begun(std::size_t bytes) { return XMLFrame(std::string(2000, 'x')).substr(0, bytes); }
};

TEST_F(StrangersMemory, IsLimitedForAllTogetherAndTheOneThatHoldsMostLoses) {
    listener_->SetMaxUnadmittedBytes(1'000);
    Listen();
    const auto small = Call();
    const auto large = Call();
    const auto last = Call();
    Heard();
    Sends(*small, Begun(200));
    Sends(*large, Begun(500));
    EXPECT_EQ(Heard(), "");
    Sends(*last, Begun(450));
    EXPECT_EQ(Heard(), "client-error:10055 gone");
    EXPECT_TRUE(large->heard_end);
    EXPECT_FALSE(small->heard_end || last->heard_end);
}

TEST_F(StrangersMemory, IsFreeAgainWhenTheBlockWasDelivered) {
    listener_->SetMaxUnadmittedBytes(1'000);
    Listen();
    const auto one = Call();
    const auto other = Call();
    const std::string frame = XMLFrame(std::string(900, 'x'));
    for (int i = 0; i < 3; ++i) {
        Sends(*one, frame.substr(0, 800));
        Sends(*one, frame.substr(800));
        Sends(*other, frame.substr(0, 800));
        Sends(*other, frame.substr(800));
    }
    EXPECT_FALSE(one->heard_end || other->heard_end);
}

TEST_F(StrangersMemory, IsNotTheirsOnceTheyAreAdmitted) {
    listener_->SetMaxUnadmittedBytes(1'000);
    Listen();
    const auto one = Call();
    const auto other = Call();
    Sends(*one, Begun(900));
    accepted_[0]->Admit();
    Sends(*other, Begun(900));
    EXPECT_FALSE(one->heard_end || other->heard_end);
}

TEST_F(StrangersMemory, IncludesWhatTheyDoNotRead) {
    machine_.network->SetPipeSize(100);
    listener_->SetMaxUnadmittedBytes(1'000);
    Listen();
    const auto deaf = Call();
    deaf->StopReading();
    accepted_[0]->SendBytes(std::string(900, 'x'));
    Run();
    EXPECT_TRUE(accepted_[0]->Connected());
    accepted_[0]->SendBytes(std::string(300, 'x'));
    Run();
    EXPECT_FALSE(accepted_[0]->Connected());
    EXPECT_EQ(Heard(), "accepted client-error:10055 gone");
}

TEST_F(StrangersMemory, ForAnswersIsSmallerThanThatOfTheAdmitted) {
    machine_.network->SetPipeSize(100);
    ListenWith({.stranger_unsent = 1'000});
    const auto deaf = Call();
    deaf->StopReading();
    const std::string large(5'000, 'x');
    EXPECT_EQ(NumberRaisedBy([&] { accepted_[0]->SendBytes(large); }), 0);
    Run();
    EXPECT_EQ(NumberRaisedBy([&] { accepted_[0]->SendBytes("y"); }), 10055);
    EXPECT_FALSE(accepted_[0]->Connected());
    const auto admitted = Call();
    admitted->StopReading();
    accepted_[1]->Admit();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(NumberRaisedBy([&] { accepted_[1]->SendBytes(large); }), 0);
}

class DeafPeer : public ListenerScene {
 protected:
    // A caller that sends questions and reads no answers; each answer has 200 bytes.
    void CallsAndAsks(int questions) {
        machine_.network->SetPipeSize(100);
        ListenWith({.reading_stops = 500});
        listener_->Receive.Connect(owner_, [](const Listener::ClientPtr& client, const Block&) {
            client->SendBytes(std::string(190, 'a'));
        });
        caller_ = Call();
        caller_->StopReading();
        Heard();
        for (int i = 0; i < questions; ++i)
            Sends(*caller_, XMLFrame("q"));
    }
    std::size_t Answered() { return static_cast<std::size_t>(std::ranges::count(heard_, 'q')); }

    std::unique_ptr<RawPeer> caller_;
};

TEST_F(DeafPeer, IsNotReadWhileItsAnswersWait) {
    CallsAndAsks(20);
    EXPECT_LE(Answered(), 4U);
    EXPECT_TRUE(accepted_[0]->Connected());
}

TEST_F(DeafPeer, GetsNoMoreAnswersToBlocksThatCameTogether) {
    CallsAndAsks(0);
    machine_.network->SetPipeSize(3'000);
    std::string questions;
    for (int i = 0; i < 100; ++i)
        questions += XMLFrame("q");
    Sends(*caller_, questions);
    EXPECT_LE(Answered(), 20U);
    caller_->ReadOn();
    Run();
    EXPECT_EQ(Answered(), 100U);
}

TEST_F(DeafPeer, IsAnsweredInFullWhenItReadsAgain) {
    CallsAndAsks(9);
    caller_->ReadOn();
    Run();
    EXPECT_EQ(Answered(), 9U);
    EXPECT_EQ(caller_->heard.size(), 9U * 200);
}

}  // namespace
}  // namespace kq
