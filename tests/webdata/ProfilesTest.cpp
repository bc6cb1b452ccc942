// Profiles, their tables and the collection with its events.
#include <gmock/gmock.h>

#include <kqappsession/WebData.h>

#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using ::testing::ElementsAre;
using testing::ExpectError;
using testing::ExpectInvalidCall;
using testing::RandomTexts;

std::shared_ptr<Profile> NamedProfile(std::string_view name) {
    auto profile = std::make_shared<Profile>(name);
    const auto row = profile->Tables().Create("Colours", "Name,Value")->AddRow();
    row->SetValue("Name", "Paper");
    row->SetValue("Value", "white");
    return profile;
}

// A collection with the profiles "Day" and "Night" that writes down its events.
class ProfilesTest : public ::testing::Test {
 protected:
    ProfilesTest() {
        profiles.Add(NamedProfile("Day"));
        profiles.Add(NamedProfile("Night"));
        profiles.ProfileAdded.Connect(owner,
                                      [this](const auto& p) { events.push_back("added " + p->Name()); });
        profiles.ProfileRemoved.Connect(owner,
                                        [this](const auto& name) { events.push_back("removed " + name); });
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& profile : profiles)
            names.push_back(profile->Name());
        return names;
    }

    Profiles profiles;
    std::vector<std::string> events;
    Owner owner;
};

TEST_F(ProfilesTest, FindsProfilesByExactName) {
    EXPECT_TRUE(profiles.Exists("Day"));
    EXPECT_FALSE(profiles.Exists("day"));
    EXPECT_EQ(profiles.Item("Night")->Name(), "Night");
    ExpectInvalidCall([&] { profiles.Item("day"); });
}

TEST_F(ProfilesTest, CountsProfilesFromOne) {
    EXPECT_EQ(profiles.Count(), 2);
    EXPECT_EQ(profiles.Item(1)->Name(), "Day");
    EXPECT_EQ(profiles.Item(2)->Name(), "Night");
    for (const std::int32_t index : {0, 3, -1})
        ExpectInvalidCall([&] { profiles.Item(index); });
}

TEST_F(ProfilesTest, AddsTheObjectItselfAndRaisesAnEvent) {
    const auto profile = NamedProfile("New");
    EXPECT_EQ(profiles.Add(profile), profile);
    EXPECT_EQ(profiles.Item("New"), profile);
    EXPECT_THAT(events, ElementsAre("added New"));
}

TEST_F(ProfilesTest, RefusesANameThatIsTakenAndAProfileThatIsNone) {
    ExpectError(RuntimeError::DuplicateKey, [&] { profiles.Add(NamedProfile("Day")); });
    ExpectError(RuntimeError::ObjectNotSet, [&] { profiles.Add(nullptr); });
    EXPECT_THAT(Names(), ElementsAre("Day", "Night"));
    EXPECT_TRUE(events.empty());
}

TEST_F(ProfilesTest, RemovesAProfileAndRaisesAnEvent) {
    profiles.Remove("Day");
    EXPECT_THAT(Names(), ElementsAre("Night"));
    EXPECT_THAT(events, ElementsAre("removed Day"));
    ExpectInvalidCall([&] { profiles.Remove("Day"); });
}

TEST_F(ProfilesTest, RemovesAProfileByTheNameThatItHoldsItself) {
    profiles.Remove(profiles.Item(1)->Name());
    EXPECT_THAT(events, ElementsAre("removed Day"));
}

TEST_F(ProfilesTest, RaisesEventsAfterTheChange) {
    std::vector<std::int32_t> counts;
    profiles.ProfileAdded.Connect(owner, [&](const auto&) { counts.push_back(profiles.Count()); });
    profiles.ProfileRemoved.Connect(owner, [&](const auto&) { counts.push_back(profiles.Count()); });
    profiles.Add(NamedProfile("New"));
    profiles.Remove("New");
    EXPECT_THAT(counts, ElementsAre(3, 2));
}

TEST_F(ProfilesTest, LetsAHandlerRemoveWhatWasJustAdded) {
    profiles.ProfileAdded.Connect(owner, [&](const auto& profile) { profiles.Remove(profile->Name()); });
    EXPECT_EQ(profiles.Add(NamedProfile("New"))->Name(), "New");
    EXPECT_FALSE(profiles.Exists("New"));
}

TEST_F(ProfilesTest, RenamesAProfileInItsPlaceWithoutAnEvent) {
    const auto day = profiles.Item("Day");
    profiles.Rename("Day", "Noon");
    EXPECT_THAT(Names(), ElementsAre("Noon", "Night"));
    EXPECT_EQ(profiles.Item(1), day);
    EXPECT_TRUE(events.empty());
}

TEST_F(ProfilesTest, RenamesOnlyToANameThatIsFree) {
    ExpectError(RuntimeError::DuplicateKey, [&] { profiles.Rename("Day", "Night"); });
    ExpectInvalidCall([&] { profiles.Rename("Noon", "Evening"); });
    ExpectInvalidCall([&] { profiles.Rename("Day", "\x01"); });
    profiles.Rename("Day", "Day");
    EXPECT_THAT(Names(), ElementsAre("Day", "Night"));
}

TEST_F(ProfilesTest, KeepsTheLastUsedNameWithARename) {
    profiles.SetLastUsed("Day");
    profiles.Rename("Night", "Evening");
    EXPECT_EQ(profiles.LastUsed(), "Day");
    profiles.Rename("Day", "Noon");
    EXPECT_EQ(profiles.LastUsed(), "Noon");
}

TEST_F(ProfilesTest, AreWrittenWithTheLastUsedName) {
    profiles.Remove("Night");
    profiles.SetLastUsed("Day");
    EXPECT_EQ(
        profiles.ToXML(),
        R"(<Profiles lastUsed="Day"><Profile name="Day"><DataTable name="Colours" columns="Name,Value"><Row>)"
        R"(<Value column="Name">Paper</Value><Value column="Value">white</Value></Row></DataTable></Profile>)"
        "</Profiles>");
}

TEST_F(ProfilesTest, ComeBackFromTheirTextWithoutEvents) {
    profiles.SetLastUsed("Night");
    const auto text = profiles.ToXML();
    profiles.LoadXML("<Profiles/>");
    EXPECT_EQ(profiles.Count(), 0);
    EXPECT_EQ(profiles.LastUsed(), "");
    profiles.LoadXML(text);
    EXPECT_EQ(profiles.ToXML(), text);
    EXPECT_TRUE(events.empty());
}

TEST_F(ProfilesTest, TravelAsAFieldOfAMessage) {
    XMLMessage sent("ASProfilesUpdate", "1");
    sent.SetXMLField("Profiles", profiles.ToXML());
    XMLMessage received;
    received.LoadXML(sent.ToXML());
    Profiles loaded;
    loaded.LoadXML(received.Field("Profiles"));
    EXPECT_EQ(loaded.ToXML(), profiles.ToXML());
}

TEST_F(ProfilesTest, TravelAsAFieldOfAMessageWhenThereAreNone) {
    XMLMessage message("ASProfilesUpdate", "1");
    message.SetXMLField("Profiles", Profiles().ToXML());
    profiles.LoadXML(message.Field("Profiles"));
    EXPECT_EQ(profiles.Count(), 0);
}

TEST_F(ProfilesTest, CannotBeWrittenOnceTwoHaveTheSameName) {
    profiles.Item("Night")->LoadXML(profiles.Item("Day")->ToXML());
    ExpectError(RuntimeError::DuplicateKey, [&] { profiles.ToXML(); });
}

TEST(Profile, ComesBackFromItsText) {
    Profile profile("other");
    profile.LoadXML(NamedProfile("Day")->ToXML());
    EXPECT_EQ(profile.Name(), "Day");
    EXPECT_EQ(profile.ToXML(), NamedProfile("Day")->ToXML());
}

TEST(Profile, SharesNothingWithItsCopy) {
    const auto original = NamedProfile("Day");
    const auto copy = original->Copy("Night");
    copy->Tables().Item("Colours")->Rows().Item(1)->SetValue("Value", "black");
    copy->Tables().Item("Colours")->AddRow();
    copy->Tables().Create("Other", "a");
    EXPECT_EQ(original->ToXML(), NamedProfile("Day")->ToXML());
    EXPECT_EQ(copy->Name(), "Night");
    EXPECT_EQ(copy->Tables().Item("Colours")->Rows().Item(1)->Value("Name"), "Paper");
}

TEST(Profile, SharesNothingWhenItIsAssigned) {
    const auto original = NamedProfile("Day");
    Profile copy = *original;
    copy.Tables().Item(1)->AddRow();
    EXPECT_EQ(original->ToXML(), NamedProfile("Day")->ToXML());
}

TEST(Profile, RefusesANameThatXMLCannotCarry) {
    ExpectInvalidCall([] { Profile profile("a\x01"); });
    ExpectInvalidCall([] { Profile("a").Copy("\xED\xA0\x80"); });
    ExpectInvalidCall([] { Profiles().SetLastUsed("\x02"); });
}

TEST(TableStore, CreatesFindsAndRemovesTables) {
    TableStore store;
    const auto table = store.Create("kqasForms", "FormName");
    EXPECT_TRUE(store.Exists("kqasForms"));
    EXPECT_EQ(store.Item("kqasForms"), table);
    EXPECT_EQ(store.Item(1), table);
    store.Remove("kqasForms");
    EXPECT_EQ(store.Count(), 0);
}

TEST(TableStore, RefusesWhatItHasAlreadyOrHasNot) {
    TableStore store;
    store.Create("a", "x");
    ExpectError(RuntimeError::DuplicateKey, [&] { store.Create("a", "y"); });
    ExpectError(RuntimeError::DuplicateKey, [&] { store.Add(std::make_shared<DataTable>("a", "")); });
    ExpectError(RuntimeError::ObjectNotSet, [&] { store.Add(nullptr); });
    ExpectInvalidCall([&] { store.Item("A"); });
    ExpectInvalidCall([&] { store.Item(2); });
    ExpectInvalidCall([&] { store.Remove("b"); });
    EXPECT_EQ(store.Count(), 1);
}

TEST(Profile, CannotBeWrittenOnceTwoTablesHaveTheSameName) {
    Profile profile("Day");
    profile.Tables().Create("a", "");
    profile.Tables().Create("b", "")->LoadXML("<DataTable name='a' columns=''/>");
    ExpectError(RuntimeError::DuplicateKey, [&] { profile.ToXML(); });
}

TEST(Profiles, KeepRandomNames) {
    RandomTexts random;
    for (int round = 0; round < 100; ++round) {
        Profiles profiles;
        profiles.SetLastUsed(random.Next());
        for (int i = 0; i < 4; ++i)
            profiles.Add(NamedProfile(std::to_string(i) + random.Next()));
        Profiles loaded;
        loaded.LoadXML(profiles.ToXML());
        EXPECT_EQ(loaded.LastUsed(), profiles.LastUsed());
        for (std::int32_t i = 1; i <= 4; ++i)
            EXPECT_EQ(loaded.Item(i)->Name(), profiles.Item(i)->Name());
    }
}

}  // namespace
}  // namespace kq
