// Events to hosts.
#include "automation/Host.h"

namespace kq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

struct TimerEvents : testing::Test {
    ~TimerEvents() override {
        if (timer) timer->put_Enabled(VARIANT_FALSE);
    }
    void Start() {
        timer->put_Interval(1);
        timer->put_Enabled(VARIANT_TRUE);
    }
    HostObject sink;  // sinks outlive what they listen to
    HostObject other;
    Ptr<_Timer> timer = NewTimer();
};

TEST_F(TimerEvents, ReachEverySink) {
    Advise(timer.Get(), __uuidof(_TimerEvents), &sink);
    Advise(timer.Get(), __uuidof(_TimerEvents), &other);
    Start();
    ASSERT_TRUE(Await([&] { return !other.heard.empty(); }));
    EXPECT_EQ(sink.heard[0], "1()");
    EXPECT_EQ(other.heard[0], "1()");
}

TEST_F(TimerEvents, AreHeardThroughTheEventInterfaceToo) {
    sink.events = __uuidof(_TimerEvents);
    Advise(timer.Get(), __uuidof(_TimerEvents), &sink);
    Start();
    EXPECT_TRUE(Await([&] { return !sink.heard.empty(); }));
}

TEST_F(TimerEvents, ReachTheNextSinkThoughOneFails) {
    sink.answer = E_FAIL;
    Advise(timer.Get(), __uuidof(_TimerEvents), &sink);
    Advise(timer.Get(), __uuidof(_TimerEvents), &other);
    Start();
    ASSERT_TRUE(Await([&] { return other.heard.size() >= 2; }));
    EXPECT_GE(sink.heard.size(), 2U);
}

TEST_F(TimerEvents, EndWithTheConnection) {
    const DWORD cookie = Advise(timer.Get(), __uuidof(_TimerEvents), &sink);
    Advise(timer.Get(), __uuidof(_TimerEvents), &other);
    EXPECT_EQ(PointOf(timer.Get(), __uuidof(_TimerEvents))->Unadvise(cookie), S_OK);
    EXPECT_EQ(sink.references, 1U);
    Start();
    ASSERT_TRUE(Await([&] { return !other.heard.empty(); }));
    EXPECT_THAT(sink.heard, ElementsAre());
}

TEST_F(TimerEvents, MayDisconnectTheSinksThatComeLater) {
    const auto point = PointOf(timer.Get(), __uuidof(_TimerEvents));
    Advise(timer.Get(), __uuidof(_TimerEvents), &sink);
    const DWORD cookie = Advise(timer.Get(), __uuidof(_TimerEvents), &other);
    sink.on_event = [&](DISPID) { point->Unadvise(cookie); };
    Start();
    ASSERT_TRUE(Await([&] { return sink.heard.size() >= 2; }));
    EXPECT_THAT(other.heard, ElementsAre());
}

TEST_F(TimerEvents, MayDropTheObject) {
    Advise(timer.Get(), __uuidof(_TimerEvents), &sink);
    sink.on_event = [&](DISPID) { timer = nullptr; };
    Start();
    ASSERT_TRUE(Await([&] { return !sink.heard.empty(); }));
    EXPECT_FALSE(timer);
    EXPECT_EQ(sink.references, 1U);
}

TEST_F(TimerEvents, AreConnectedAtOnePoint) {
    Ptr<IEnumConnectionPoints> points;
    const auto container = timer.As<IConnectionPointContainer>();
    ASSERT_EQ(container->EnumConnectionPoints(points.Out()), S_OK);
    Ptr<IConnectionPoint> point;
    ULONG fetched = 0;
    ASSERT_EQ(points->Next(1, point.Out(), &fetched), S_OK);
    IID id{};
    EXPECT_EQ(point->GetConnectionInterface(&id), S_OK);
    EXPECT_TRUE(id == __uuidof(_TimerEvents));
    Ptr<IConnectionPointContainer> owner;
    EXPECT_EQ(point->GetConnectionPointContainer(owner.Out()), S_OK);
    EXPECT_TRUE(SameObject(owner, timer));
}

TEST_F(TimerEvents, AreConnectedOnlyToWhatCanHearThem) {
    const auto container = timer.As<IConnectionPointContainer>();
    Ptr<IConnectionPoint> point;
    EXPECT_EQ(container->FindConnectionPoint(__uuidof(_ProfilesEvents), point.Out()), CONNECT_E_NOCONNECTION);
    DWORD cookie = 0;
    const auto mute = Ptr<IUnknown>(PointOf(timer.Get(), __uuidof(_TimerEvents)).Get());
    EXPECT_EQ(PointOf(timer.Get(), __uuidof(_TimerEvents))->Advise(mute.Get(), &cookie),
              CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(PointOf(timer.Get(), __uuidof(_TimerEvents))->Unadvise(7), CONNECT_E_NOCONNECTION);
}

TEST(ProfilesEvents, TellWhatWasAddedAndRemoved) {
    HostObject sink;
    const auto profiles = Create<_Profiles>(L"KQWebDataLib.Profiles");
    Advise(profiles.Get(), __uuidof(_ProfilesEvents), &sink);
    Ptr<_Profile> profile;
    profiles->AddNew(Text(L"Work"), profile.Out());
    profiles->Remove(Text(L"Work"));
    EXPECT_THAT(sink.heard, ElementsAre("1(object)", "2(Work)"));
}

struct ConnectionEvents : testing::Test {
    ConnectionEvents() {
        Advise(listener.Get(), __uuidof(_ListenerEvents), &heard_by_listener);
        Advise(client.Get(), __uuidof(_APClientEvents), &heard_by_client);
        listener->Listen(0, Text(L"127.0.0.1"));
        long port = 0;
        listener->get_Port(&port);
        EXPECT_EQ(client->Connect(Text(L"127.0.0.1"), port, Text(L""), 0), S_OK);
    }
    Ptr<_APClient> Accepted() {
        EXPECT_TRUE(Await([&] { return !heard_by_listener.heard.empty(); }));
        Ptr<_APClient> accepted;
        EXPECT_EQ(listener->get_Client(_variant_t(1L), accepted.Out()), S_OK);
        return accepted;
    }
    HostObject heard_by_listener;
    HostObject heard_by_client;
    Ptr<_Listener> listener = Create<_Listener>(L"KQAppProtocolLib.Listener");
    Ptr<_APClient> client = Create<_APClient>(L"KQAppProtocolLib.APClient");
};

TEST_F(ConnectionEvents, TellOfClientsAndTheirData) {
    client->SendText(Text(L"gr\x00fc\x00df"), Text(L"tag"));
    ASSERT_TRUE(Await([&] { return heard_by_listener.heard.size() >= 2; }));
    EXPECT_EQ(heard_by_listener.heard[0], "1(object)");
    EXPECT_THAT(heard_by_listener.heard[1], HasSubstr(", 128, tag)"));
}

TEST_F(ConnectionEvents, TellOfData) {
    Accepted()->SendText(Text(L"hello"), Text(L"tag"));
    ASSERT_TRUE(Await([&] { return !heard_by_client.heard.empty(); }));
    EXPECT_THAT(heard_by_client.heard, ElementsAre("4(hello, 128, tag)"));
}

TEST_F(ConnectionEvents, TellOfTheEnd) {
    Accepted()->Disconnect();
    ASSERT_TRUE(Await([&] { return heard_by_client.heard.size() + heard_by_listener.heard.size() >= 3; }));
    EXPECT_THAT(heard_by_client.heard, Contains("1()"));
    EXPECT_THAT(heard_by_listener.heard, Contains("3(object)"));
}

}  // namespace
}  // namespace kq
