// What an application server tells the bus of itself.
#include <algorithm>

#include "automation/SessionsTesting.h"
#include "automation/WideText.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Announcements : SessionsTest {
    std::vector<std::string> VersionsOf(const wchar_t* versions) {
        events_.Forget();
        EXPECT_EQ(server_.Initialize(versions), S_OK);
        server_.Listens();
        EXPECT_EQ(server_.object->StopListening(LeftOut()), S_OK);
        return events_.announcements.at(0).Texts("InterfaceVersions");
    }
    // The sessions of the latest announcement in a state, in the order of their names.
    std::vector<std::string> Latest(const std::string& state) {
        const auto all = events_.Announced(state);
        auto sessions = all.empty() ? std::vector<std::string>{"no announcement"} : all.back().sessions;
        std::sort(sessions.begin(), sessions.end());
        return sessions;
    }
    bool AwaitAnnouncements(const std::string& state, std::size_t count) {
        return Await([&] { return events_.Announced(state).size() >= count; });
    }
};

TEST_F(Announcements, NameTheInterfaceVersionsOfAText) {
    EXPECT_THAT(VersionsOf(L"1.0|2.0,3"), ElementsAre("1.0", "2.0,3"));
    EXPECT_THAT(VersionsOf(L"1.0,,2"), ElementsAre("1.0", "", "2"));
}

TEST_F(Announcements, BeginWithTheServerAndThenItsSessions) {
    ASSERT_EQ(server_.Initialize(), S_OK);
    server_.Listens();
    ASSERT_EQ(events_.announcements.size(), 2U);
    EXPECT_EQ(events_.announcements[0].state, "C");
    EXPECT_THAT(events_.announcements[0].sessions, ElementsAre("no list"));
    EXPECT_EQ(events_.announcements[1].state, "C");
    EXPECT_THAT(events_.announcements[1].sessions, IsEmpty());
    EXPECT_EQ(events_.announcements[0].Text("Port"), std::to_string(server_.Port()));
    EXPECT_EQ(events_.announcements[0].Text("Address"), "127.0.0.1");
    EXPECT_EQ(events_.announcements[0].Text("BroadcastInterval"), "120");
}

TEST_F(Announcements, ReachTheLoginServer) {
    ASSERT_EQ(server_.Initialize(), S_OK);
    server_.Listens();
    const auto announcement = zeb_.Request("ASBroadcastInfo");
    EXPECT_EQ(Read(announcement, &_XMLMessage::get_Schema), L"ZEBSchemas");
}

TEST_F(Announcements, ListAllSessionsAtTheInterval) {
    Listens();
    RegisteredClient("S1");
    RegisteredClient("S2");
    ASSERT_EQ(server_.object->put_InfoInterval(1), S_OK);
    ASSERT_TRUE(Await([&] { return Latest("C").size() == 2; }));
    events_.Forget();
    const auto start = GetTickCount64();
    ASSERT_TRUE(AwaitAnnouncements("C", 3));
    EXPECT_GE(GetTickCount64() - start, 1'900U);
    for (const auto& announcement : events_.Announced("C"))
        EXPECT_THAT(announcement.sessions, testing::UnorderedElementsAre("S1", "S2"));
}

TEST_F(Announcements, NameASessionThatHasEndedAndThenThoseThatAreLeft) {
    Listens();
    RegisteredClient("S1");
    auto& leaving = RegisteredClient("S2");
    RegisteredClient("S3");
    ASSERT_TRUE(Await([&] { return Latest("C").size() == 3; }));
    leaving.Leaves();
    ASSERT_TRUE(AwaitAnnouncements("E", 1));
    EXPECT_THAT(Latest("E"), ElementsAre("S2"));
    events_.Forget();
    ASSERT_EQ(server_.object->put_InfoInterval(1), S_OK);
    ASSERT_TRUE(AwaitAnnouncements("C", 1));
    EXPECT_THAT(Latest("C"), ElementsAre("S1", "S3"));
}

TEST_F(Announcements, AreMadeAtTheLoginServersRequest) {
    Listens();
    zeb_.SaysToAll(MessageOf("RequestBroadcastAS"));
    ASSERT_TRUE(AwaitEvent("XMLBusReceive"));
    EXPECT_THAT(events_.heard,
                ElementsAre("XMLBusSend ASBroadcastInfo", "XMLBusReceive RequestBroadcastAS 0 "));
    EXPECT_EQ(events_.announcements[0].state, "C");
}

TEST_F(Announcements, EndWithOneThatSaysSo) {
    Listens();
    RegisteredClient("S1");
    ASSERT_TRUE(Await([&] { return Latest("C").size() == 1; }));
    events_.Forget();
    EXPECT_EQ(server_.object->StopListening(LeftOut()), S_OK);
    EXPECT_THAT(Latest("D"), ElementsAre("no list"));
    EXPECT_EQ(events_.announcements.size(), 1U);
}

TEST_F(Announcements, StopAtAnIntervalThatIsTooLong) {
    ApplicationServer other(bus_.Port());
    ASSERT_EQ(other.Initialize(), S_OK);
    other.Listens();
    Listens();
    ASSERT_EQ(server_.object->put_InfoInterval(1), S_OK);
    ASSERT_EQ(other.object->put_InfoInterval(1), S_OK);
    EXPECT_EQ(server_.object->put_InfoInterval(3'000'000), static_cast<HRESULT>(0x800A0006));
    events_.Forget();
    other.events.Forget();
    ASSERT_TRUE(Await([&] { return other.events.announcements.size() >= 2; }));
    EXPECT_THAT(events_.heard, IsEmpty());
}

TEST_F(Announcements, KeepTheirIntervalWhenTheNextOneIsTooLong) {
    Listens();
    ASSERT_EQ(server_.object->put_InfoInterval(1), S_OK);
    EXPECT_EQ(server_.object->put_InfoInterval(3'000'000), static_cast<HRESULT>(0x800A0006));
    ASSERT_EQ(server_.object->StopListening(LeftOut()), S_OK);
    server_.Listens();
    events_.Forget();
    EXPECT_TRUE(AwaitAnnouncements("C", 1));
}

TEST_F(Announcements, AreNotBegunTwiceEvenWhenTheServerIsNoLongerInitialized) {
    Listens();
    const long port = server_.Port();
    VARIANT_BOOL initialized = VARIANT_TRUE;
    ASSERT_EQ(
        server_.object->Initialize(Text(L"Demo"), nullptr, server_.bus.Get(), nullptr, _variant_t(L"1.0")),
        S_OK);
    ASSERT_EQ(server_.object->get_IsInitialized(&initialized), S_OK);
    EXPECT_EQ(initialized, VARIANT_FALSE);
    EXPECT_EQ(server_.object->Listen(0, LeftOut()), static_cast<HRESULT>(kqaserrAlreadyConnected));
    EXPECT_EQ(LastError().description, L"Listener is already connected on port " + std::to_wstring(port) +
                                           L".  Please disconnect before attempting to connect again.");
    ASSERT_EQ(server_.Initialize(), S_OK);
}

// A folder of an application, with a program as its client installer.
struct InstallerAnnouncements : Announcements {
    InstallerAnnouncements() {
        wchar_t temporary[MAX_PATH + 1] = L"";
        GetTempPathW(MAX_PATH, temporary);
        application.path = temporary + (L"kq" + std::to_wstring(GetCurrentProcessId()));
        CreateDirectoryW(application.path.c_str(), nullptr);
    }
    ~InstallerAnnouncements() override {
        DeleteFileW(InstallerPath(L"Setup.exe").c_str());
        DeleteFileW(InstallerPath(L"Client.MSI").c_str());
        RemoveDirectoryW((application.path + L"\\Install").c_str());
        RemoveDirectoryW(application.path.c_str());
    }
    std::wstring InstallerPath(const wchar_t* name) const { return application.path + L"\\Install\\" + name; }
    // The DLL has a version resource of its own.
    void HasInstaller(const wchar_t* name) {
        CreateDirectoryW((application.path + L"\\Install").c_str(), nullptr);
        ASSERT_TRUE(CopyFileW(DllPath().c_str(), InstallerPath(name).c_str(), FALSE));
    }
    const Announcement& First() {
        EXPECT_EQ(server_.Initialize(L"1.0", &application), S_OK);
        server_.Listens();
        return events_.announcements.at(0);
    }
    static std::string SharedPath(const std::string& file) {
        wchar_t name[MAX_COMPUTERNAME_LENGTH + 1] = L"";
        DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
        GetComputerNameW(name, &size);
        return "\\\\" + Narrow(name) + "\\ClientInstall_Demo\\" + file;
    }
    ApplicationObject application;
};

TEST_F(InstallerAnnouncements, NameThePathAndTheVersionOfAProgram) {
    HasInstaller(L"Setup.exe");
    const auto& announcement = First();
    EXPECT_EQ(announcement.Text("ClientPath"), SharedPath("Setup.exe"));
    EXPECT_EQ(announcement.Text("ClientVersion"), KQ_DLL_VERSION);
}

TEST_F(InstallerAnnouncements, NameOnlyThePathOfAPackage) {
    HasInstaller(L"Client.MSI");
    ASSERT_EQ(server_.Initialize(L"1.0", &application), S_OK);
    ASSERT_EQ(server_.object->setInstallExeFile(Text(L"Client.MSI")), S_OK);
    server_.Listens();
    EXPECT_EQ(events_.announcements.at(0).Text("ClientPath"), SharedPath("Client.MSI"));
    EXPECT_FALSE(events_.announcements.at(0).Has("ClientVersion"));
}

TEST_F(InstallerAnnouncements, NameNeitherWithoutAnInstaller) {
    const auto& announcement = First();
    EXPECT_EQ(announcement.Text("AppID"), "Demo");
    EXPECT_FALSE(announcement.Has("ClientPath"));
    EXPECT_FALSE(announcement.Has("ClientVersion"));
}

}  // namespace
}  // namespace kq
