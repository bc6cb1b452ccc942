// An application server written in C++.
#include "automation/Host.h"

namespace kq {
namespace {

struct Server : testing::Test {
    HRESULT Initialize(const _variant_t& versions) {
        return server->Initialize(Text(L"Demo"), nullptr, bus.Get(), statistics.Get(), versions);
    }
    bool IsInitialized() {
        VARIANT_BOOL initialized = VARIANT_FALSE;
        EXPECT_EQ(server->get_IsInitialized(&initialized), S_OK);
        return initialized != VARIANT_FALSE;
    }
    _variant_t Array(VARTYPE type, std::vector<_variant_t> elements) {
        _variant_t array;
        array.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        array.parray = SafeArrayCreateVector(type, 0, static_cast<ULONG>(elements.size()));
        for (LONG i = 0; i < static_cast<LONG>(elements.size()); ++i) {
            auto& element = elements[static_cast<std::size_t>(i)];
            SafeArrayPutElement(
                array.parray, &i,
                type == VT_BSTR ? static_cast<void*>(element.bstrVal) : static_cast<void*>(&element));
        }
        return array;
    }
    HostObject sink;  // outlives what it listens to
    Ptr<_KQAppSessServer> server = NewServer();
    Ptr<_Client> bus = Create<_Client>(L"KQXMLBusClientLib.Client");
    Ptr<_Statistics> statistics = Create<_Statistics>(L"KQStatisticsLib.Statistics");
};

TEST_F(Server, NeedsABusClientAndStatistics) {
    EXPECT_EQ(server->Initialize(Text(L"Demo"), nullptr, bus.Get(), nullptr, _variant_t(L"1.0")), S_OK);
    EXPECT_FALSE(IsInitialized());
    EXPECT_EQ(server->Listen(0, LeftOut()), static_cast<HRESULT>(kqaserrNotInitialized));
    EXPECT_EQ(Initialize(L"1.0"), S_OK);
    EXPECT_TRUE(IsInitialized());
}

TEST_F(Server, TakesInterfaceVersionsInEveryForm) {
    EXPECT_EQ(Initialize(L"1.0|2.0"), S_OK);
    EXPECT_EQ(Initialize(Array(VT_BSTR, {L"1.0", L"2.0"})), S_OK);
    EXPECT_EQ(Initialize(Array(VT_VARIANT, {L"1.0", 2.0})), S_OK);
    const auto table = Create<_TranslationTable>(L"KQWebDataLib.TranslationTable");
    table->SetText(Text(L"1.0"), Text(L"an enumerator gives the keys"));
    EXPECT_EQ(Initialize(_variant_t(static_cast<IDispatch*>(table.Get()))), S_OK);
}

TEST_F(Server, RefusesOtherThingsAsInterfaceVersionsAndKeepsTheRest) {
    EXPECT_EQ(Initialize(1.0), static_cast<HRESULT>(kqaserrInvalidInterfaces));
    EXPECT_EQ(LastError().description,
              L"Invalid interfaces were specified.  Must be a collection, comma- or pipe-separated string, "
              L"string or "
              L"variant array, or collection.");
    EXPECT_TRUE(IsInitialized());
    EXPECT_EQ(Initialize(_variant_t(static_cast<IDispatch*>(NewTimer().Get()))),
              static_cast<HRESULT>(kqaserrInvalidInterfaces));
    EXPECT_EQ(Initialize(Array(VT_VARIANT, {_variant_t(static_cast<IDispatch*>(NewTimer().Get()))})),
              static_cast<HRESULT>(kqaserrInvalidInterfaces));
}

TEST_F(Server, ListensAndTellsThePort) {
    ASSERT_EQ(Initialize(L"1.0"), S_OK);
    ASSERT_EQ(server->Listen(0, _variant_t(L"127.0.0.1")), S_OK);
    Ptr<_Listener> listener;
    long port = 0;
    ASSERT_EQ(server->get_Listener(listener.Out()), S_OK);
    EXPECT_EQ(listener->get_Port(&port), S_OK);
    EXPECT_EQ(server->Listen(0, LeftOut()), static_cast<HRESULT>(kqaserrAlreadyConnected));
    EXPECT_EQ(LastError().description, L"Listener is already connected on port " + std::to_wstring(port) +
                                           L".  Please disconnect before attempting to connect again.");
    EXPECT_EQ(server->StopListening(_variant_t(true)), S_OK);
}

TEST_F(Server, TellsWhatItSendsToTheBus) {
    Advise(server.Get(), __uuidof(_KQAppSessServerEvents), &sink);
    ASSERT_EQ(Initialize(L"1.0"), S_OK);
    ASSERT_EQ(server->Listen(0, _variant_t(L"127.0.0.1")), S_OK);
    EXPECT_THAT(sink.heard, testing::ElementsAre("6(object)", "6(object)"));
    EXPECT_EQ(server->StopListening(LeftOut()), S_OK);
}

TEST_F(Server, MayBeDroppedInTheMiddleOfItsOwnEvent) {
    Advise(server.Get(), __uuidof(_KQAppSessServerEvents), &sink);
    ASSERT_EQ(Initialize(L"1.0"), S_OK);
    sink.on_event = [&](DISPID) { server = nullptr; };
    _KQAppSessServer* const raw = server.Get();
    EXPECT_EQ(raw->Listen(0, _variant_t(L"127.0.0.1")), S_OK);
    EXPECT_FALSE(server);
    EXPECT_EQ(sink.references, 1U);
}

TEST_F(Server, RaisesOverflowForAnIntervalThatIsTooLong) {
    EXPECT_EQ(server->put_InfoInterval(3'000'000), static_cast<HRESULT>(0x800A0006));
    EXPECT_EQ(LastError().description, L"Overflow");
    long interval = 0;
    server->get_InfoInterval(&interval);
    EXPECT_EQ(interval, 3'000'000);
}

TEST_F(Server, ChecksMessages) {
    const auto message = NewMessage();
    message->put_Type(Text(L"ASLogoutUser"));
    message->put_Schema(Text(L"urn:zebschemas"));
    VARIANT_BOOL ours = VARIANT_FALSE;
    EXPECT_EQ(server->CheckMessage(message.Get(), &ours), S_OK);
    EXPECT_EQ(ours, VARIANT_TRUE);
    message->put_Type(Text(L"ASLoginRequest"));
    EXPECT_EQ(server->CheckMessage(message.Get(), &ours), S_OK);
    EXPECT_EQ(ours, VARIANT_FALSE);
    EXPECT_EQ(server->CheckMessage(nullptr, &ours), S_OK);
    EXPECT_EQ(ours, VARIANT_FALSE);
}

TEST_F(Server, FindsNoSessionThatIsNotThere) {
    Ptr<_KQAppSessionInfos> sessions;
    Ptr<_KQAppSessionInfo> session;
    VARIANT_BOOL exists = VARIANT_TRUE;
    ASSERT_EQ(server->get_Sessions(sessions.Out()), S_OK);
    EXPECT_EQ(sessions->get_Session(_variant_t(1L), session.Out()), static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(sessions->get_Session(_variant_t(L"S1"), session.Out()), static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(sessions->Exists(Text(L"S1"), &exists), S_OK);
    EXPECT_EQ(exists, VARIANT_FALSE);
}

}  // namespace
}  // namespace kq
