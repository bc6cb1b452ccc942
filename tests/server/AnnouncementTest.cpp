// What the login servers are told: the announcement's contents, its states, its interval, the client's
// installer.
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ServerAnnouncement : public ServerTest {
 protected:
    void Announces() {
        server_->Listen(7000);
        Run();
    }
    // The states of what was sent, with the sessions listed: "C[S1,S2]"; "C" without a list.
    std::vector<std::string> Sent() const {
        std::vector<std::string> sent;
        for (const auto& message : heard_.sent) {
            auto ids = SessionsIn(message);
            std::string list;
            for (const auto& id : ids)
                list += (list.empty() ? "" : ",") + id;
            sent.push_back(StateOf(message) + (list == "no list" ? "" : "[" + list + "]"));
        }
        return sent;
    }
    void Ticks(std::int32_t seconds) { machine_.loop->Advance(Milliseconds(1000) * seconds); }
};

TEST_F(ServerAnnouncement, IsSentAloneAndThenWithTheSessionsWhenListeningStarts) {
    Initialize();
    Announces();
    EXPECT_THAT(Sent(), ElementsAre("C", "C[]"));
    EXPECT_EQ(heard_.Of("XMLBusSend").size(), 2U);
}

TEST_F(ServerAnnouncement, NamesTheApplicationItsPlaceAndItsVersionsInOrder) {
    Initialize("Demo", "1.0|2.0");
    Announces();
    const auto& announcement = zeb_.announcements.back();
    std::vector<std::string> lines;
    for (const auto& element : announcement.Root().Find("ApplicationInfos/ApplicationInfo")->Children())
        lines.push_back(element.Name() + "=" + element.Text());
    EXPECT_THAT(lines,
                ElementsAre("AppID=Demo", "Port=7000", "Address=192.0.2.10", "BroadcastInterval=120",
                            "InterfaceVersions=1.0", "InterfaceVersions=2.0", "InfoState=C", "Sessions="));
}

TEST_F(ServerAnnouncement, IsABusMessageToAllLoginServersThatSaysWhereToAnswer) {
    Initialize();
    Announces();
    const auto& announcement = zeb_.announcements.back();
    EXPECT_EQ(announcement.Type(), "ASBroadcastInfo");
    EXPECT_EQ(announcement.Schema(), "ZEBSchemas");
    EXPECT_EQ(announcement.Destination(), (BusAddress{"ZEB", "Broadcast"}));
    EXPECT_EQ(announcement.Root().TextOf("ASRequestInfo/ReturnMsgType"), bus_client_->ReplyType());
    EXPECT_EQ(announcement.Root().TextOf("ASRequestInfo/ReturnSubType"), bus_client_->ReplySubType());
}

TEST_F(ServerAnnouncement, ListsAllSessionsAtEveryIntervalInTheOrderOfTheirComing) {
    Server().SetInfoInterval(30);
    Listens();
    RegisteredClient("S2");
    RegisteredClient("S1");
    Ticks(30);
    Ticks(30);
    EXPECT_THAT(Sent(), ElementsAre("C[S2,S1]", "C[S2,S1]"));
}

TEST_F(ServerAnnouncement, ListsTheSessionsAfterEachThatIsAdded) {
    Listens();
    Client().Registers("S1");
    zeb_.Grants("S1");
    Client().Registers("S2");
    heard_.sent.clear();
    zeb_.Grants("S2");
    EXPECT_THAT(Sent(), ElementsAre("C[S1,S2]"));
}

TEST_F(ServerAnnouncement, NamesOnlyTheSessionThatEndedAndThenThoseThatRemain) {
    Listens();
    RegisteredClient("S1");
    auto& second = RegisteredClient("S2");
    RegisteredClient("S3");
    second.Leaves();
    Ticks(120);
    EXPECT_THAT(Sent(), ElementsAre("E[S2]", "C[S1,S3]"));
}

TEST_F(ServerAnnouncement, SaysOnceThatTheServerStopsAndNamesNoSessions) {
    Listens();
    RegisteredClient("S1");
    Server().StopListening();
    Run();
    Ticks(500);
    EXPECT_THAT(Sent(), ElementsAre("D"));
}

TEST_F(ServerAnnouncement, GivesNoSignOfLifeAfterListeningStopped) {
    bus_client_->Start();
    Listens();
    RegisteredClient("S1");
    Server().StopListening();
    Forget();
    zeb_.Says(MessageOf("RequestBroadcastAS"), {bus_client_->ReplyType(), bus_client_->ReplySubType()});
    EXPECT_THAT(heard_.All(), ElementsAre("XMLBusReceive RequestBroadcastAS 0 "));
}

TEST_F(ServerAnnouncement, TellsOfASessionThatEndsAfterListeningStopped) {
    bus_client_->Start();
    Listens();
    auto& client = RegisteredClient("S1");
    Server().StopListening();
    Forget();
    client.Leaves();
    EXPECT_THAT(Sent(), ElementsAre("E[S1]"));
}

TEST_F(ServerAnnouncement, KeepsItsBaseFormWhenTheBusRefusesAList) {
    Listens();
    RegisteredClient("S1");
    FillBus(true);
    Ticks(120);
    FillBus(false);
    Ticks(120);
    EXPECT_THAT(Sent(), ElementsAre("C[S1]"));
    Server().StopListening();
    EXPECT_THAT(Sent(), ElementsAre("C[S1]", "D"));
}

TEST_F(ServerAnnouncement, IsBuiltAnewByTheNextListen) {
    Listens();
    Server().StopListening();
    Initialize("Other", "7");
    Server().Listen(7001);
    Run();
    EXPECT_EQ(LatestInfo("AppID"), "Other");
    EXPECT_EQ(LatestInfo("Port"), "7001");
    EXPECT_EQ(LatestInfo("InterfaceVersions"), "7");
}

TEST_F(ServerAnnouncement, IsNotSentWithWhatAnEarlierListenSaid) {
    Listens();
    Server().StopListening();
    Forget();
    app_->fails = true;
    EXPECT_EQ(NumberRaisedBy([this] { Server().Listen(7001); }), NumberOf(RuntimeError::ObjectNotSet));
    Ticks(120);
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(ServerAnnouncement, ListsNobodyAfterTheServerWasInitialisedAgain) {
    Listens();
    RegisteredClient("S1");
    Initialize();
    Ticks(120);
    EXPECT_THAT(Sent(), ElementsAre("C[]"));
}

TEST_F(ServerAnnouncement, TakesANewIntervalAtOnceAndSaysSo) {
    Listens();
    Server().SetInfoInterval(10);
    Ticks(10);
    EXPECT_THAT(Sent(), ElementsAre("C[]"));
    EXPECT_EQ(LatestInfo("BroadcastInterval"), "10");
}

TEST_F(ServerAnnouncement, StopsAtAnIntervalThatOverflowsAndKeepsTheOldOne) {
    Listens();
    EXPECT_EQ(NumberRaisedBy([this] { Server().SetInfoInterval(3'000'000); }),
              NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(Server().InfoInterval(), 3'000'000);
    Ticks(1000);
    EXPECT_THAT(Sent(), IsEmpty());
    Server().StopListening();
    Server().Listen(7000);
    Run();
    Forget();
    Ticks(120);
    EXPECT_THAT(Sent(), ElementsAre("C[]"));
}

TEST_F(ServerAnnouncement, TakesTheLargestIntervalAndRefusesTheOnesBeyondBothEnds) {
    EXPECT_EQ(NumberRaisedBy([this] { Server().SetInfoInterval(2'147'483); }), 0);
    EXPECT_EQ(NumberRaisedBy([this] { Server().SetInfoInterval(2'147'484); }),
              NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(NumberRaisedBy([this] { Server().SetInfoInterval(-2'147'484); }),
              NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(Server().InfoInterval(), -2'147'484);
}

TEST_F(ServerAnnouncement, DoesNotTickAtAnIntervalOfZeroOrLess) {
    Listens();
    Server().SetInfoInterval(0);
    Ticks(1000);
    Server().SetInfoInterval(-5);
    Ticks(1000);
    EXPECT_THAT(Sent(), IsEmpty());
    Server().SetInfoInterval(5);
    Ticks(5);
    EXPECT_THAT(Sent(), ElementsAre("C[]"));
}

class AnnouncedInstaller : public ServerAnnouncement {
 protected:
    void Installs(const std::string& file) {
        app_->properties["Path"] = "/opt/demo";
        machine_.folders->files.insert("/opt/demo/Install/" + file);
    }
    void HasVersion(const std::string& file, const std::string& version) {
        auto& block = machine_.version_resource->blocks["/opt/demo/Install/" + file];
        block.translation = {0x09, 0x04, 0xB0, 0x04};
        block.texts["\\StringFileInfo\\040904B0\\FileVersion"] = version;
    }
    void ExpectNoInstaller() const {
        const auto& info = *zeb_.announcements.back().Root().Find("ApplicationInfos/ApplicationInfo");
        EXPECT_EQ(info.Find("ClientPath"), nullptr);
        EXPECT_EQ(info.Find("ClientVersion"), nullptr);
        EXPECT_THAT(machine_.file_share->shared, IsEmpty());
    }
};

TEST_F(AnnouncedInstaller, IsSharedAndNamedWithItsVersion) {
    Installs("Setup.exe");
    HasVersion("Setup.exe", "5.02.3");
    Initialize();
    Announces();
    EXPECT_EQ(LatestInfo("ClientPath"), "\\\\TESTHOST\\ClientInstall_Demo\\Setup.exe");
    EXPECT_EQ(LatestInfo("ClientVersion"), "5.2.3");
    EXPECT_THAT(machine_.file_share->shared,
                ElementsAre(testing::Pair("ClientInstall_Demo", "/opt/demo/Install")));
}

TEST_F(AnnouncedInstaller, HasNoVersionWithoutAVersionResource) {
    Installs("Setup.exe");
    Initialize();
    Announces();
    EXPECT_EQ(LatestInfo("ClientPath"), "\\\\TESTHOST\\ClientInstall_Demo\\Setup.exe");
    EXPECT_EQ(zeb_.announcements.back().Root().Find("ApplicationInfos/ApplicationInfo/ClientVersion"),
              nullptr);
}

TEST_F(AnnouncedInstaller, HasNoVersionWhenItsNameEndsInMsi) {
    Installs("Client.msi");
    HasVersion("Client.msi", "1.2.3.4");
    Initialize();
    Server().setInstallExeFile("Client.msi");
    Announces();
    EXPECT_EQ(LatestInfo("ClientPath"), "\\\\TESTHOST\\ClientInstall_Demo\\Client.msi");
    EXPECT_EQ(zeb_.announcements.back().Root().Find("ApplicationInfos/ApplicationInfo/ClientVersion"),
              nullptr);
}

TEST_F(AnnouncedInstaller, HasAnotherNameForOneApplication) {
    Installs("Valtorin2.msi");
    Initialize("VL2");
    Announces();
    EXPECT_EQ(LatestInfo("ClientPath"), "\\\\TESTHOST\\ClientInstall_VL2\\Valtorin2.msi");
}

TEST_F(AnnouncedInstaller, HasTheUsualNameForThatApplicationInOtherLetters) {
    Installs("Setup.exe");
    Initialize("vl2");
    Announces();
    EXPECT_EQ(LatestInfo("ClientPath"), "\\\\TESTHOST\\ClientInstall_vl2\\Setup.exe");
}

TEST_F(AnnouncedInstaller, IsLeftOutWithoutTheFolderInstall) {
    app_->properties["Path"] = "/opt/demo";
    Initialize();
    Announces();
    ExpectNoInstaller();
}

TEST_F(AnnouncedInstaller, IsLeftOutWithoutAPathProperty) {
    Initialize();
    Announces();
    ExpectNoInstaller();
}

TEST_F(AnnouncedInstaller, IsLeftOutWithoutAnApplicationObject) {
    app_ = nullptr;
    Initialize();
    Announces();
    ExpectNoInstaller();
}

}  // namespace
}  // namespace kq
