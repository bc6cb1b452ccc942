// How objects come and go: by manifest, from the class factory, until the DLL can be unloaded.
#include <objbase.h>

#include "automation/Host.h"
#include "automation/TypeLibraryText.h"

namespace kq {
namespace {

constexpr const wchar_t* kClasses[] = {
    L"KQAppSessionLib.KQAppSessClient",
    L"KQAppSessionLib.KQAppSessServer",
    L"KQXMLMessageLib.XMLElement",
    L"KQXMLMessageLib.XMLMessage",
    L"KQAppProtocolLib.APClient",
    L"KQAppProtocolLib.Listener",
    L"KQXMLBusClientLib.Client",
    L"KQWebDataLib.TranslationTable",
    L"KQWebDataLib.DataTable",
    L"KQWebDataLib.Profile",
    L"KQWebDataLib.Profiles",
    L"KQStatisticsLib.Statistics",
    L"KQTimerLib.Timer",
};

TEST(Activation, MakesEveryClassByItsPlainAndItsVersionedProgID) {
    for (const std::wstring name : kClasses) {
        EXPECT_TRUE(Create<IDispatch>(name.c_str()));
        EXPECT_TRUE(Create<IDispatch>((name + L".1").c_str()));
    }
}

struct DescribedClass {
    CLSID id{};
    bool can_be_made = false;
};

std::vector<DescribedClass> ClassesOf(ITypeLib& library) {
    std::vector<DescribedClass> classes;
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
        Ptr<ITypeInfo> info;
        TYPEATTR* attributes = nullptr;
        EXPECT_EQ(library.GetTypeInfo(i, info.Out()), S_OK);
        EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
        if (attributes->typekind == TKIND_COCLASS)
            classes.push_back({attributes->guid, (attributes->wTypeFlags & TYPEFLAG_FCANCREATE) != 0});
        info->ReleaseTypeAttr(attributes);
    }
    return classes;
}

TEST(Activation, MakesTheClassesThatTheTypeLibrariesOfferAndNoOther) {
    const auto keeps_the_dll = NewTimer();
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const auto get = reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"KQAppSessionLib.dll"), "DllGetClassObject")));
    std::size_t made = 0;
    for (const auto& library : TypeLibrariesOf(DllPath())) {
        for (const auto& described : ClassesOf(*library.Get())) {
            Ptr<IClassFactory> factory;
            EXPECT_EQ(get(described.id, IID_IClassFactory, factory.OutVoid()),
                      described.can_be_made ? S_OK : CLASS_E_CLASSNOTAVAILABLE);
            made += factory ? 1 : 0;
        }
    }
    EXPECT_EQ(made, std::size(kClasses));
}

bool Unloads() {
    return Await([] {
        CoFreeUnusedLibrariesEx(0, 0);
        return !GetModuleHandleW(L"KQAppSessionLib.dll");
    });
}

// A server with a sink, a connection to its listener, an enumeration and an error, all let go.
void UseMuch() {
    HostObject sink;
    const auto server = NewServer();
    const DWORD cookie = Advise(server.Get(), __uuidof(_KQAppSessServerEvents), &sink);
    const auto bus = Create<_Client>(L"KQXMLBusClientLib.Client");
    const auto statistics = Create<_Statistics>(L"KQStatisticsLib.Statistics");
    EXPECT_EQ(server->Initialize(Text(L"Demo"), &sink, bus.Get(), statistics.Get(), _variant_t(L"1.0")),
              S_OK);
    EXPECT_EQ(server->Listen(0, _variant_t(L"127.0.0.1")), S_OK);
    Ptr<_Listener> listener;
    long port = 0;
    server->get_Listener(listener.Out());
    listener->get_Port(&port);
    const auto connection = Create<_APClient>(L"KQAppProtocolLib.APClient");
    EXPECT_EQ(connection->Connect(Text(L"127.0.0.1"), port, Text(L""), 0), S_OK);
    long count = 0;
    EXPECT_TRUE(Await([&] { return listener->get_Count(&count) == S_OK && count == 1; }));
    Ptr<IUnknown> clients;
    EXPECT_EQ(listener->get_NewEnum(clients.Out()), S_OK);
    EXPECT_EQ(server->Listen(0, LeftOut()), static_cast<HRESULT>(kqaserrAlreadyConnected));
    EXPECT_EQ(server->StopListening(_variant_t(true)), S_OK);
    EXPECT_EQ(server->Terminate(), S_OK);
    EXPECT_EQ(PointOf(server.Get(), __uuidof(_KQAppSessServerEvents))->Unadvise(cookie), S_OK);
    SetErrorInfo(0, nullptr);
}

TEST(Activation, UnloadsTheDllAfterItWasUsed) {
    UseMuch();
    EXPECT_TRUE(Unloads());
}

TEST(Activation, UnloadsTheDllThoughNobodyTookWhatItGave) {
    {
        const auto timer = NewTimer();
        EXPECT_EQ(timer.As<IConnectionPointContainer>()->EnumConnectionPoints(nullptr), E_POINTER);
        EXPECT_EQ(timer.As<IProvideClassInfo>()->GetClassInfo(nullptr), E_POINTER);
    }
    EXPECT_TRUE(Unloads());
}

TEST(Activation, UnloadsTheDllWhenTheLastObjectIsGone) {
    auto server = NewServer();
    auto client = NewClient();
    ASSERT_TRUE(GetModuleHandleW(L"KQAppSessionLib.dll"));
    server = nullptr;
    client = nullptr;
    ASSERT_TRUE(Unloads());
    EXPECT_TRUE(NewClient());  // and it comes back
}

TEST(Activation, KeepsTheDllWhileAnObjectLives) {
    const auto timer = NewTimer();
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_TRUE(GetModuleHandleW(L"KQAppSessionLib.dll"));
}

TEST(Activation, RefusesToBePartOfAnotherObject) {
    HostObject outer;
    Ptr<IUnknown> object;
    EXPECT_EQ(CoCreateInstance(__uuidof(Timer), &outer, CLSCTX_INPROC_SERVER, IID_IUnknown, object.OutVoid()),
              CLASS_E_NOAGGREGATION);
}

TEST(Activation, RefusesInterfacesThatAClassLacks) {
    Ptr<IUnknown> object;
    EXPECT_EQ(
        CoCreateInstance(__uuidof(Timer), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_Client), object.OutVoid()),
        E_NOINTERFACE);
}

TEST(Activation, TellsItsClassAndItsEvents) {
    const auto info = NewTimer().As<IProvideClassInfo2>();
    ASSERT_TRUE(info);
    GUID source{};
    EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source), S_OK);
    EXPECT_TRUE(source == __uuidof(_TimerEvents));
    Ptr<ITypeInfo> description;
    EXPECT_EQ(info->GetClassInfo(description.Out()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(description->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(attributes->guid == __uuidof(Timer));
    description->ReleaseTypeAttr(attributes);
}

TEST(Activation, TellsThatAClassHasNoEvents) {
    GUID source{};
    EXPECT_EQ(NewClient().As<IProvideClassInfo2>()->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source),
              E_INVALIDARG);
}

// A thread of the other kind of apartment: the system carries its calls to the object's thread.
struct ForeignCall {
    Ptr<IStream> stream;
    HRESULT result = E_FAIL;
    std::wstring address;
    HANDLE context = nullptr;

    static DWORD WINAPI Run(void* parameter) {
        auto& call = *static_cast<ForeignCall*>(parameter);
        ULONG_PTR cookie = 0;
        ActivateActCtx(call.context, &cookie);
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        {
            Ptr<_KQAppSessClient> client;
            call.result = CoGetInterfaceAndReleaseStream(call.stream.Detach(), __uuidof(_KQAppSessClient),
                                                         client.OutVoid());
            if (SUCCEEDED(call.result)) {
                call.result = client->put_AppServerAddress(TextReference(L"from afar"));
                call.address = Read(client, &_KQAppSessClient::get_AppServerAddress);
            }
        }
        CoUninitialize();
        return 0;
    }
};

TEST(Activation, CarriesCallsFromOtherThreads) {
    const auto client = NewClient();
    ForeignCall call;
    GetCurrentActCtx(&call.context);
    ASSERT_EQ(
        CoMarshalInterThreadInterfaceInStream(__uuidof(_KQAppSessClient), client.Get(), call.stream.Out()),
        S_OK);
    const HANDLE thread = CreateThread(nullptr, 0, &ForeignCall::Run, &call, 0, nullptr);
    ASSERT_TRUE(Await([&] { return WaitForSingleObject(thread, 0) == WAIT_OBJECT_0; }));
    CloseHandle(thread);
    EXPECT_EQ(call.result, S_OK);
    EXPECT_EQ(call.address, L"from afar");
}

}  // namespace
}  // namespace kq
