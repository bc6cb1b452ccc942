// Early-bound hosts: values, objects, collections and errors through the slots.
#include "automation/Host.h"

namespace kq {
namespace {

// A client that is logged in with the login server, as far as it knows.
constexpr wchar_t kSession[] =
    L"<ASMessage type=\"SessionInfo\" version=\"1\"><AppID>Demo</AppID><SessionID>S1</SessionID>"
    L"<UserUID>17</UserUID><BUIDUnionList>7|9|</BUIDUnionList></ASMessage>";
constexpr wchar_t kProfiles[] = L"<Profiles><Profile name=\"Work\"/><Profile name=\"Home\"/></Profiles>";

HRESULT SetState(const Ptr<_KQAppSessClient>& client, const _variant_t& session, const _variant_t& profiles) {
    _variant_t message(session);
    _variant_t collection(profiles);
    _variant_t table;
    long port = 7000;
    long time_out = 5000;
    return client->SetSystemLoginState(&message, &table, &collection, TextReference(L""),
                                       TextReference(L"host"), &port, &time_out);
}

Ptr<_KQAppSessionInfo> SessionOf(const Ptr<_KQAppSessClient>& client) {
    Ptr<_KQAppSessionInfo> session;
    EXPECT_EQ(client->get_SessionInfo(session.Out()), S_OK);
    return session;
}

std::vector<std::wstring> TextsOf(SAFEARRAY* array) {
    BSTR* texts = nullptr;
    SafeArrayAccessData(array, reinterpret_cast<void**>(&texts));
    std::vector<std::wstring> result(texts, texts + array->rgsabound[0].cElements);
    SafeArrayUnaccessData(array);
    SafeArrayDestroy(array);
    return result;
}

TEST(Members, TakeAndGiveValues) {
    const auto client = NewClient();
    VARIANT_BOOL off = VARIANT_FALSE;
    long port = -5;
    EXPECT_EQ(client->put_UseProfiles(&off), S_OK);
    EXPECT_EQ(client->put_AppServerPort(&port), S_OK);
    EXPECT_EQ(client->put_RestrictIP(TextReference(L"10.0.0.\x00e9")), S_OK);
    VARIANT_BOOL use = VARIANT_TRUE;
    client->get_UseProfiles(&use);
    client->get_AppServerPort(&(port = 0));
    EXPECT_EQ(use, VARIANT_FALSE);
    EXPECT_EQ(port, -5);
    EXPECT_EQ(Read(client, &_KQAppSessClient::get_RestrictIP), L"10.0.0.\x00e9");
}

TEST(Members, TakeANullTextForAnEmptyOne) {
    const auto client = NewClient();
    BSTR null = nullptr;
    EXPECT_EQ(client->put_AppServerAddress(&null), S_OK);
    EXPECT_EQ(Read(client, &_KQAppSessClient::get_AppServerAddress), L"");
}

TEST(Members, RefuseNullPointers) {
    const auto client = NewClient();
    EXPECT_EQ(client->put_AppServerPort(nullptr), E_POINTER);
    EXPECT_EQ(client->get_AppServerPort(nullptr), E_POINTER);
    EXPECT_EQ(client->IPAddressFromHostName(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(client->get_SessionInfo(nullptr), E_POINTER);
}

TEST(Members, GiveNothingWhereThereIsNoObject) {
    char not_an_object = 0;
    auto* table = reinterpret_cast<_TranslationTable*>(&not_an_object);
    EXPECT_EQ(NewClient()->get_TranslationTable(&table), S_OK);
    EXPECT_EQ(table, nullptr);
}

TEST(Members, RaiseTheCoresErrorWithNumberSourceAndDescription) {
    const auto client = NewClient();
    VARIANT_BOOL interactive = VARIANT_FALSE;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(client->ServerLogin(&interactive, &result), static_cast<HRESULT>(kqaserrLoginNoSystem));
    const LastError error;
    EXPECT_TRUE(error.id == __uuidof(_KQAppSessClient));
    EXPECT_EQ(error.source, L"KQAppSessionLib");
    EXPECT_EQ(
        error.description,
        L"A system login must be performed before a server login, or the proper state must first be set.");
    EXPECT_EQ(result, VARIANT_FALSE);
}

TEST(Members, LeaveNoErrorObjectOfAnEarlierCall) {
    const auto client = NewClient();
    client->put_AppServerPort(nullptr);
    long port = 0;
    EXPECT_EQ(client->get_AppServerPort(&port), S_OK);
    EXPECT_EQ(LastError().source, L"");
}

TEST(Members, SayThatTheyHaveErrorObjects) {
    const auto support = NewClient().As<ISupportErrorInfo>();
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(_KQAppSessClient)), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(_Timer)), S_FALSE);
}

TEST(Members, GiveTheSameObjectForTheSameThing) {
    const auto client = NewClient();
    const auto session = SessionOf(client);
    EXPECT_TRUE(SameObject(session, SessionOf(client)));
    EXPECT_TRUE(session.Get() == SessionOf(client).Get());
}

TEST(Members, GiveBackTheObjectThatWasGiven) {
    const auto client = NewClient();
    const auto message = NewMessage();
    message->LoadXML(Text(kSession));
    ASSERT_EQ(SetState(client, _variant_t(message.Get()), kProfiles), S_OK);
    Ptr<_XMLMessage> exported;
    EXPECT_EQ(SessionOf(client)->Export(exported.Out()), S_OK);
    EXPECT_TRUE(SameObject(exported, message));
}

TEST(Members, RefuseObjectsOfOtherKinds) {
    const auto client = NewClient();
    HostObject stranger;
    auto* foreign = reinterpret_cast<_Profile*>(static_cast<IDispatch*>(&stranger));
    EXPECT_EQ(client->putref_CurrentProfile(&foreign), static_cast<HRESULT>(0x800A000D));
    EXPECT_EQ(LastError().description, L"Type mismatch");
    EXPECT_EQ(SetState(client, _variant_t(static_cast<IDispatch*>(NewTimer().Get())), kProfiles),
              static_cast<HRESULT>(0x800A000D));
    EXPECT_EQ(stranger.references, 1U);
}

TEST(Members, RaiseError91ForNothingWhereAnObjectIsNeeded) {
    _Profile* nothing = nullptr;
    EXPECT_EQ(NewClient()->putref_CurrentProfile(&nothing), static_cast<HRESULT>(0x800A005B));
}

TEST(Members, GiveTextArraysThroughTheSlots) {
    const auto client = NewClient();
    ASSERT_EQ(SetState(client, kSession, kProfiles), S_OK);
    SAFEARRAY* units = nullptr;
    ASSERT_EQ(SessionOf(client)->get_BUIDList(&units), S_OK);
    EXPECT_THAT(TextsOf(units), testing::ElementsAre(L"7", L"9", L""));
}

TEST(Members, ChooseTheFirstProfileWhenNoneIsNamed) {
    const auto client = NewClient();
    ASSERT_EQ(SetState(client, kSession, kProfiles), S_OK);
    Ptr<_Profile> profile;
    ASSERT_EQ(client->get_CurrentProfile(profile.Out()), S_OK);
    EXPECT_EQ(Read(profile, &_Profile::get_Name), L"Work");
    KQAppSessLoginState state = kqaslsNotLoggedIn;
    client->get_LoginState(&state);
    EXPECT_EQ(state, kqaslsSystemLogin);
}

TEST(Members, AnswerNotImplementedWithASentenceWhereTheCoreDoesNotStandYet) {
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(NewClient()->ChangePassword(TextReference(L"KQTests"), nullptr, &result), E_NOTIMPL);
    EXPECT_EQ(LastError().description, L"ChangePassword is not implemented");
}

TEST(Members, ConvertOptionalArguments) {
    const auto server = NewServer();
    _variant_t not_a_boolean(L"maybe");
    EXPECT_EQ(server->StopListening(not_a_boolean), static_cast<HRESULT>(0x800A000D));
    EXPECT_EQ(server->StopListening(LeftOut()), static_cast<HRESULT>(kqaserrNotInitialized));
    EXPECT_EQ(server->StopListening(_variant_t(1L)), static_cast<HRESULT>(kqaserrNotInitialized));
}

TEST(Members, TakeOnlyAPictureAsIcon) {
    const auto client = NewClient();
    VARIANT_BOOL silent = VARIANT_FALSE;
    VARIANT_BOOL result = VARIANT_FALSE;
    _variant_t no_picture(static_cast<IDispatch*>(NewTimer().Get()));
    EXPECT_EQ(client->SystemLogin(&silent, TextReference(L"Demo"), TextReference(L"1.0"), nullptr, nullptr,
                                  nullptr, &no_picture, nullptr, nullptr, nullptr, nullptr, nullptr, &result),
              static_cast<HRESULT>(0x800A000D));
    EXPECT_EQ(client->SystemLogin(&silent, TextReference(L"Demo"), TextReference(L"1.0"), nullptr, nullptr,
                                  nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &result),
              static_cast<HRESULT>(kqaserrLoginBadAddr));
}

// Collections.

Ptr<IEnumVARIANT> EnumeratorOf(const Ptr<_Profiles>& profiles) {
    Ptr<IUnknown> enumerator;
    EXPECT_EQ(profiles->get_NewEnum(enumerator.Out()), S_OK);
    return enumerator.As<IEnumVARIANT>();
}

struct Enumeration : testing::Test {
    Enumeration() {
        profiles->LoadXML(Text(kProfiles));
        enumerator = EnumeratorOf(profiles);
    }
    std::wstring Next(const Ptr<IEnumVARIANT>& from) {
        _variant_t value;
        ULONG fetched = 0;
        if (from->Next(1, &value, &fetched) != S_OK) return L"end";
        return Read(Ptr<IDispatch>(value.pdispVal).As<_Profile>(), &_Profile::get_Name);
    }
    Ptr<_Profiles> profiles = Create<_Profiles>(L"KQWebDataLib.Profiles");
    Ptr<IEnumVARIANT> enumerator;
};

TEST_F(Enumeration, GivesEveryElementInOrder) {
    EXPECT_EQ(Next(enumerator), L"Work");
    EXPECT_EQ(Next(enumerator), L"Home");
    EXPECT_EQ(Next(enumerator), L"end");
}

TEST_F(Enumeration, IsOfTheMomentWhenItBegan) {
    ASSERT_EQ(profiles->Remove(Text(L"Work")), S_OK);
    EXPECT_EQ(Next(enumerator), L"Work");
}

TEST_F(Enumeration, SkipsRestartsAndCopiesItself) {
    EXPECT_EQ(enumerator->Skip(1), S_OK);
    Ptr<IEnumVARIANT> copy;
    ASSERT_EQ(enumerator->Clone(copy.Out()), S_OK);
    EXPECT_EQ(Next(enumerator), L"Home");
    EXPECT_EQ(Next(copy), L"Home");
    EXPECT_EQ(enumerator->Skip(1), S_FALSE);
    EXPECT_EQ(enumerator->Reset(), S_OK);
    EXPECT_EQ(Next(enumerator), L"Work");
}

TEST_F(Enumeration, SaysWhenThereAreFewerThanAskedFor) {
    _variant_t values[3];
    ULONG fetched = 0;
    EXPECT_EQ(enumerator->Next(3, values, &fetched), S_FALSE);
    EXPECT_EQ(fetched, 2U);
}

}  // namespace
}  // namespace kq
