// Late-bound hosts: names, arguments by place, name and reference, and what is wrong with them.
#include <array>

#include "automation/Host.h"

namespace kq {
namespace {

constexpr auto kTypeMismatch = static_cast<HRESULT>(0x800A000D);
constexpr auto kOverflow = static_cast<HRESULT>(0x800A0006);

struct Dispatch : testing::Test {
    // The settings of an application that talks to a port where nobody listens.
    void BeNowhere() {
        EXPECT_EQ(client.Do(L"SetSystemLoginState",
                            {L"<ASMessage type=\"S\" "
                             L"version=\"1\"><AppID>KQNowhere</AppID><UserUID>1</UserUID></ASMessage>",
                             _variant_t(), L"<Profiles/>", L"", L"host", 1L, 2L}),
                  S_OK);
        EXPECT_EQ(client.Do(L"SetSystemConnectState", {L"127.0.0.1", 1L, 2000L}), S_OK);
    }

    Ptr<_KQAppSessClient> client_object = NewClient();
    Late client{client_object};
    Ptr<_XMLMessage> message_object = NewMessage();
    Late message{message_object};
};

_variant_t ByReference(_variant_t& value) {
    _variant_t reference;
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &value;
    return reference;
}

TEST_F(Dispatch, KnowsNamesInAnyCase) {
    EXPECT_EQ(client.IdOf(L"LoginState"), 15);
    EXPECT_EQ(client.IdOf(L"loginstate"), 15);
    EXPECT_EQ(client.IdOf(L"Nonsense"), DISPID_UNKNOWN);
    EXPECT_EQ(client.Get(L"Nonsense"), DISP_E_UNKNOWNNAME);
}

TEST_F(Dispatch, ConvertsArgumentsToTheDeclaredType) {
    EXPECT_EQ(client.Let(L"AppServerPort", {L"7000"}), S_OK);
    EXPECT_EQ(client.Get(L"AppServerPort"), S_OK);
    EXPECT_EQ(client.result, _variant_t(7000L));
    EXPECT_EQ(client.Let(L"AppServerAddress", {5L}), S_OK);
    EXPECT_EQ(client.Get(L"AppServerAddress"), S_OK);
    EXPECT_EQ(client.result, _variant_t(L"5"));
}

TEST_F(Dispatch, TakesVariablesOfAnySubtype) {
    _variant_t port(L"80");
    EXPECT_EQ(client.Let(L"AppServerPort", {ByReference(port)}), S_OK);
    EXPECT_EQ(client.Get(L"AppServerPort"), S_OK);
    EXPECT_EQ(client.result, _variant_t(80L));
    EXPECT_EQ(port.vt, VT_BSTR);  // not changed, since nothing came back
}

TEST_F(Dispatch, NamesTheArgumentThatIsWrong) {
    EXPECT_EQ(client.Do(L"SetSystemConnectState", {L"host", L"no port", 1L}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, kTypeMismatch);
    EXPECT_EQ(client.source, L"KQAppSessionLib");
    EXPECT_EQ(client.description, L"Type mismatch");
    EXPECT_EQ(client.wrong_argument, 1U);  // counted from the last
    EXPECT_EQ(client.Let(L"AppServerPort", {1e12}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, kOverflow);
}

TEST_F(Dispatch, CountsArguments) {
    EXPECT_EQ(client.Do(L"SetSystemConnectState", {L"host"}), DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(client.Do(L"SetSystemConnectState", {L"host", 1L, 1L, 1L}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(client.Do(L"SetSystemConnectState", {L"host", LeftOut(), 1L}), DISP_E_PARAMNOTOPTIONAL);
}

TEST_F(Dispatch, RaisesWithNumberSourceAndDescription) {
    EXPECT_EQ(client.Do(L"ServerLogin", {false}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginNoSystem));
    EXPECT_EQ(client.source, L"KQAppSessionLib");
    EXPECT_NE(client.description, L"");
}

TEST_F(Dispatch, TakesArgumentsByName) {
    EXPECT_EQ(client.Call(L"SystemLogin", DISPATCH_METHOD, {false, L"Demo", L"1.0", 7L, L"host", 10L},
                          {L"TimeOut", L"Address", L"Port"}),
              DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginBadLogin));  // so the address was complete
}

TEST_F(Dispatch, RefusesNamesOfOtherMembersArguments) {
    EXPECT_EQ(client.Call(L"ServerLogin", DISPATCH_METHOD, {false}, {L"HostName"}), DISP_E_UNKNOWNNAME);
}

TEST_F(Dispatch, WritesResultsBackIntoTheCallersVariables) {
    _variant_t address;
    _variant_t time_out;
    BeNowhere();
    client.Do(L"UpdateProfilesEx", {false, ByReference(address), LeftOut(), ByReference(time_out)});
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginNoConnect));  // nobody listens on port 1
    EXPECT_EQ(address, _variant_t(L"127.0.0.1"));
    EXPECT_EQ(time_out, _variant_t(2000L));
}

constexpr std::array<BYTE, 8> kBehind = {1, 2, 3, 4, 5, 6, 7, 8};

// A variable of the exact type and what lies behind it in memory.
template <class T>
struct Guarded {
    T value{};
    std::array<BYTE, 8> behind = kBehind;
    bool IsIntact() const { return behind == kBehind; }
};

TEST_F(Dispatch, WritesIntoVariablesOfOtherTypesWithinTheirSize) {
    BeNowhere();
    Guarded<BYTE> port;
    Guarded<LONGLONG> time_out;
    _variant_t port_reference;
    port_reference.vt = VT_BYREF | VT_UI1;
    port_reference.pbVal = &port.value;
    _variant_t time_out_reference;
    time_out_reference.vt = VT_BYREF | VT_I8;
    time_out_reference.pllVal = &time_out.value;
    client.Do(L"UpdateProfilesEx", {false, L"", port_reference, time_out_reference});
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginNoConnect));
    EXPECT_EQ(port.value, 1);
    EXPECT_TRUE(port.IsIntact());
    EXPECT_EQ(time_out.value, 2000);
    EXPECT_TRUE(time_out.IsIntact());
}

TEST_F(Dispatch, WritesIntoADecimal) {
    BeNowhere();
    DECIMAL time_out{};
    _variant_t reference;
    reference.vt = VT_BYREF | VT_DECIMAL;
    reference.pdecVal = &time_out;
    client.Do(L"UpdateProfilesEx", {false, L"", 0L, reference});
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginNoConnect));
    LONG value = 0;
    EXPECT_EQ(VarI4FromDec(&time_out, &value), S_OK);
    EXPECT_EQ(value, 2000);
}

TEST_F(Dispatch, LeavesTheCallersArrayAlone) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 1);
    SAFEARRAY* const before = array;
    _variant_t reference;
    reference.vt = VT_BYREF | VT_ARRAY | VT_VARIANT;
    reference.pparray = &array;
    EXPECT_EQ(client.Do(L"SetSystemLoginState", {reference, _variant_t(), L"<Profiles/>", L"", L"", 1L, 2L}),
              DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, kTypeMismatch);
    EXPECT_EQ(array, before);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST_F(Dispatch, RaisesTheMembersErrorThoughAVariableIsTooSmallForTheResult) {
    BeNowhere();
    BYTE time_out = 0;
    _variant_t reference;
    reference.vt = VT_BYREF | VT_UI1;
    reference.pbVal = &time_out;
    EXPECT_EQ(client.Do(L"UpdateProfilesEx", {false, L"", 0L, reference}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginNoConnect));
    EXPECT_EQ(time_out, 0);
}

TEST_F(Dispatch, CountsArgumentsBeforeAMethodRuns) {
    EXPECT_EQ(client.Do(L"ChangeConfiguration", {1L}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(client.Do(L"TerminateClient", {1L}), DISP_E_BADPARAMCOUNT);
}

// A procedure of the host that hands its own by-reference parameter on.
TEST_F(Dispatch, WritesThroughAReferenceToAReference) {
    BeNowhere();
    long time_out = 0;
    _variant_t parameter;
    parameter.vt = VT_BYREF | VT_I4;
    parameter.plVal = &time_out;
    client.Do(L"UpdateProfilesEx", {false, L"", 0L, ByReference(parameter)});
    EXPECT_EQ(client.raised, static_cast<HRESULT>(kqaserrLoginNoConnect));
    EXPECT_EQ(time_out, 2000);
    EXPECT_EQ(parameter.vt, VT_BYREF | VT_I4);
}

TEST_F(Dispatch, TakesExactReferencesToo) {
    BSTR host = SysAllocString(L"127.0.0.1");
    _variant_t reference;
    reference.vt = VT_BYREF | VT_BSTR;
    reference.pbstrVal = &host;
    EXPECT_EQ(client.Do(L"IPAddressFromHostName", {reference}), S_OK);
    EXPECT_EQ(client.result, _variant_t(L"127.0.0.1"));
    SysFreeString(host);
}

TEST_F(Dispatch, SetsAnObjectWithAndWithoutSet) {
    const auto root = Create<_XMLElement>(L"KQXMLMessageLib.XMLElement");
    root->Initialize(Text(L"Root"), Text(L""));
    EXPECT_EQ(message.Set(L"Root", {root.Get()}), S_OK);
    EXPECT_EQ(message.Let(L"Root", {root.Get()}), S_OK);
    EXPECT_EQ(Read(message_object, &_XMLMessage::get_Type), L"Root");
}

TEST_F(Dispatch, TakesNullAndEmptyForNothing) {
    _variant_t null;
    null.ChangeType(VT_NULL);
    EXPECT_EQ(client.Set(L"CurrentProfile", {null}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, static_cast<HRESULT>(0x800A005B));
    EXPECT_EQ(client.Set(L"CurrentProfile", {_variant_t()}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, static_cast<HRESULT>(0x800A005B));
}

TEST_F(Dispatch, RefusesOtherObjectsAndWhatIsNone) {
    HostObject stranger;
    EXPECT_EQ(client.Set(L"CurrentProfile", {static_cast<IDispatch*>(&stranger)}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, kTypeMismatch);
    EXPECT_EQ(client.Set(L"CurrentProfile", {5L}), DISP_E_EXCEPTION);
    EXPECT_EQ(client.raised, kTypeMismatch);
}

TEST_F(Dispatch, RefusesToSetWhatCanOnlyBeRead) {
    EXPECT_EQ(client.Let(L"LoginState", {1L}), DISP_E_MEMBERNOTFOUND);
}

TEST_F(Dispatch, ReadsAndWritesPropertiesWithArguments) {
    EXPECT_EQ(message.Let(L"Field", {L"LoginID", L"ann"}), S_OK);
    EXPECT_EQ(message.Get(L"Field", {L"LoginID"}), S_OK);
    EXPECT_EQ(message.result, _variant_t(L"ann"));
}

TEST_F(Dispatch, HandsArgumentsOnToTheObjectThatAPropertyReturns) {
    Late server(NewServer());
    EXPECT_EQ(server.Get(L"Sessions", {L"S1"}), DISP_E_EXCEPTION);
    EXPECT_EQ(server.raised, static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(server.description, L"Invalid procedure call or argument");
}

TEST_F(Dispatch, GivesScriptsArraysThatTheyCanRead) {
    message.Let(L"Field", {L"A", L"1"});
    message.Let(L"Field", {L"B", L"2"});
    ASSERT_EQ(message.Get(L"FieldNames"), S_OK);
    EXPECT_EQ(message.result.vt, VT_ARRAY | VT_VARIANT);
    EXPECT_EQ(message.Get(L"FieldNames", {1L}), S_OK);
    EXPECT_EQ(message.result, _variant_t(L"B"));
}

TEST_F(Dispatch, FillsDefaultsOfArgumentsThatAreLeftOut) {
    Late statistics(Create<_Statistics>(L"KQStatisticsLib.Statistics"));
    EXPECT_EQ(statistics.Do(L"Increment", {L"logins"}), S_OK);
    EXPECT_EQ(statistics.Do(L"Increment", {L"logins", LeftOut()}), S_OK);
    EXPECT_EQ(statistics.Get(L"Value", {L"logins"}), S_OK);
    EXPECT_EQ(statistics.result, _variant_t(2.0));
}

}  // namespace
}  // namespace kq
