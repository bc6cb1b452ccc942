// What the login servers receive when announcements were queued: which of them a newer one has outdated.
#include "messages/ASMessages.h"
#include "server/Announcement.h"
#include "server/ServerTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;

class AnnouncedState : public testing::Test {
 protected:
    AnnouncedState() {
        zeb_->AddSubscription("ZEB", BusSubscription::Ordinary, "Broadcast");
        zeb_->ReceiveMessage.Connect(
            owner_, [this](const auto& message, bool&) { received_.push_back(message->Field("Text")); });
        zeb_->Start();
        server_->Start();
        machine_.loop->RunReady();
    }
    // An announcement with this letter as its state; `text` tells it apart.
    static XMLMessage Announcement(const std::string& letter, const std::string& text,
                                   const ApplicationInfo& application = {}) {
        ASBroadcastInfo info;
        info.ApplicationInfos.emplace().ApplicationInfo = application;
        info.ApplicationInfos->ApplicationInfo->InfoState = letter;
        auto message = info.Build();
        message.SetField("Text", text);
        message.SetDestination({"ZEB", "Broadcast"});
        return message;
    }
    void Sends(const std::string& letter, const std::string& text, const ApplicationInfo& application = {}) {
        SendState(*server_, Announcement(letter, text, application));
    }
    // What arrives of all that was sent in this turn of the loop.
    const std::vector<std::string>& Received() {
        machine_.loop->RunReady();
        return received_;
    }

    FakePlatform machine_;
    LocalBus bus_{machine_.platform};
    std::shared_ptr<XMLBusClient> zeb_ = XMLBusClient::Create(machine_.platform, bus_.MakeTransport());
    std::shared_ptr<XMLBusClient> server_ = XMLBusClient::Create(machine_.platform, bus_.MakeTransport());
    std::vector<std::string> received_;
    Owner owner_;
};

TEST_F(AnnouncedState, AllSessionsOutdateEarlierListsAndEndedSessions) {
    Sends("C", "C1");
    Sends("E", "E1");
    Sends("C", "C2");
    EXPECT_THAT(Received(), ElementsAre("C2"));
}

TEST_F(AnnouncedState, AnEndedSessionOutdatesNothing) {
    Sends("C", "C1");
    Sends("E", "E1");
    Sends("E", "E2");
    EXPECT_THAT(Received(), ElementsAre("C1", "E1", "E2"));
}

TEST_F(AnnouncedState, TheEndOfAServerKeepsAllBeforeIt) {
    Sends("C", "C1");
    Sends("D", "D1");
    Sends("C", "C2");
    Sends("C", "C3");
    EXPECT_THAT(Received(), ElementsAre("C1", "D1", "C3"));
}

TEST_F(AnnouncedState, AMessageWithoutALetterOrWithAnotherIsOrdinary) {
    Sends("C", "C1");
    for (const char* letter : {"", "X", "c", "CC"})
        Sends(letter, letter);
    Sends("C", "C2");
    EXPECT_THAT(Received(), ElementsAre("", "X", "c", "CC", "C2"));
}

TEST_F(AnnouncedState, AMessageWithoutAnApplicationIsOrdinary) {
    XMLMessage note("Note", "1");
    note.SetDestination({"ZEB", "Broadcast"});
    for (const char* text : {"a", "b"}) {
        note.SetField("Text", text);
        SendState(*server_, note);
    }
    EXPECT_THAT(Received(), ElementsAre("a", "b"));
}

TEST_F(AnnouncedState, OneApplicationDoesNotOutdateAnother) {
    ApplicationInfo other_name;
    other_name.AppID = "Other";
    ApplicationInfo other_address;
    other_address.Address = "192.0.2.11";
    ApplicationInfo other_port;
    other_port.Port = "7001";
    Sends("C", "this");
    Sends("C", "name", other_name);
    Sends("C", "address", other_address);
    Sends("C", "port", other_port);
    Sends("C", "this again");
    EXPECT_THAT(Received(), ElementsAre("name", "address", "port", "this again"));
}

TEST_F(AnnouncedState, OneTypeOfMessageDoesNotOutdateAnother) {
    auto other_type = Announcement("C", "other type");
    other_type.SetType("Other");
    Sends("C", "this");
    SendState(*server_, other_type);
    EXPECT_THAT(Received(), ElementsAre("this", "other type"));
}

class QueuedAnnouncement : public ServerTest {};

TEST_F(QueuedAnnouncement, IsOutdatedByTheNextWhileTheBusHasNoRoom) {
    Listens();
    bus_.SetRoom(false);
    machine_.loop->Advance(Milliseconds(360'000));
    EXPECT_EQ(heard_.sent.size(), 3U);
    EXPECT_EQ(bus_client_->Statistics().waiting, 1);
    bus_.SetRoom(true);
    Run();
    EXPECT_EQ(zeb_.announcements.size(), 1U);
}

}  // namespace
}  // namespace kq
