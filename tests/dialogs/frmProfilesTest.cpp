// The profiles dialog: choosing, and managing the collection.
#include <gmock/gmock.h>

#include "dialogs/ProfilesTesting.h"

namespace kq {
namespace {

using ::testing::ElementsAre;

constexpr auto kTaken = "A profile named Night already exists.";
const std::vector<std::string> kNeedSelection = {"cmdChoose", "cmdCopy", "cmdRename", "cmdRemove",
                                                 "cmdShortcut"};

struct ProfilesDialog : ProfilesScene {};

TEST_F(ProfilesDialog, ShowsItsTexts) {
    Opens([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Profiles");
        EXPECT_EQ(user.Sees("lblIntro"), "Please select or create a profile:");
        EXPECT_EQ(user.Sees("cmdChoose"), "Choose");
        EXPECT_EQ(user.Sees("cmdNew"), "New");
        EXPECT_EQ(user.Sees("cmdCopy"), "Copy");
        EXPECT_EQ(user.Sees("cmdRename"), "Rename");
        EXPECT_EQ(user.Sees("cmdRemove"), "Remove");
        EXPECT_EQ(user.Sees("cmdShortcut"), "Make Shortcut");
        EXPECT_EQ(user.Sees("cmdCancel"), "Cancel");
        user.Closes();
    });
}

TEST_F(ProfilesDialog, ListsTheProfilesAndSelectsTheCurrentOne) {
    current = profiles->Item("Night");
    Opens([](FakeUser& user) {
        EXPECT_THAT(user.SeesItems("lvProfiles"), ElementsAre("Day", "Night"));
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Night");
        EXPECT_FALSE(user.CanSee("lstProfiles"));
        user.Closes();
    });
}

TEST_F(ProfilesDialog, ShowsTheIconThatItIsGiven) {
    icon = std::make_shared<FakeIcon>();
    Opens([&](FakeUser& user) {
        EXPECT_EQ(user.Window().FormIcon(), icon);
        user.Closes();
    });
}

TEST_F(ProfilesDialog, NeedsACollection) {
    profiles.reset();
    const Error error = ErrorOf([&] {
        frmProfiles(machine.platform).GetProfile(profiles, current, command_str, program, icon, changed);
    });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::ObjectNotSet));
}

TEST_F(ProfilesDialog, IsReachedByTabInReadingOrder) {
    Opens([](FakeUser& user) {
        std::string way = user.Focus();
        for (int i = 0; i < 7; ++i) {
            user.Presses(Key::Tab);
            way += " " + user.Focus();
        }
        EXPECT_EQ(way, "lvProfiles cmdNew cmdCopy cmdRename cmdRemove cmdShortcut cmdChoose cmdCancel");
        user.Closes();
    });
}

// --- The profile that a command line names

TEST_F(ProfilesDialog, SelectsTheProfileOfTheCommandLine) {
    for (const auto command : {"/Profile Night", "run.exe /PROFILE \"Night\" /x", "/Profile  Night  "}) {
        command_str = command;
        Opens([&](FakeUser& user) {
            EXPECT_EQ(user.SeesSelected("lvProfiles"), "Night") << command;
            user.Closes();
        });
    }
}

TEST_F(ProfilesDialog, SelectsTheProfileAfterASwitchInLowerCase) {
    command_str = "run.exe /profile Night";
    Opens([](FakeUser& user) {
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Night");
        user.Closes();
    });
}

TEST_F(ProfilesDialog, SelectsTheCurrentProfileWhenTheCommandLineNamesNone) {
    for (const auto command :
         {"/Profile night", "/Profile", "/Profile ", "/ProfileNight", "Night", "/Profile \"\""}) {
        command_str = command;
        Opens([&](FakeUser& user) {
            EXPECT_EQ(user.SeesSelected("lvProfiles"), "Day") << command;
            user.Closes();
        });
    }
}

TEST(ProfileInCommand, IsTakenFromTheOriginalText) {
    EXPECT_EQ(ProfileInCommand("/profile Main"), "Main");
    EXPECT_EQ(ProfileInCommand("app /PROFILE se\u00f1or ventas "), "se\u00f1or ventas");
}

TEST(ProfileInCommand, EndsAtTheClosingQuotationMark) {
    EXPECT_EQ(ProfileInCommand("/Profile \"North Sales\" /other"), "North Sales");
    EXPECT_EQ(ProfileInCommand("/Profile \"North Sales"), "North Sales");
    EXPECT_EQ(ProfileInCommand("/Profile \""), "");
}

// --- Choosing

TEST_F(ProfilesDialog, MakesTheChosenProfileCurrent) {
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Selects("lvProfiles", "Night");
        user.Clicks("cmdChoose");
    }));
    EXPECT_EQ(current, profiles->Item("Night"));
}

TEST_F(ProfilesDialog, CountsAChoiceAsNoChangeAndLeavesTheLastUsedToItsCaller) {
    const std::string last_used = profiles->LastUsed();
    ASSERT_NE(last_used, "Night");
    changed = true;
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Selects("lvProfiles", "Night");
        user.Clicks("cmdChoose");
    }));
    EXPECT_EQ(profiles->LastUsed(), last_used);
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, ChoosesByDoubleClick) {
    EXPECT_TRUE(Opens([](FakeUser& user) { user.DoubleClicks("lvProfiles", "Night"); }));
    EXPECT_EQ(current->Name(), "Night");
}

TEST_F(ProfilesDialog, ChoosesByEnter) {
    EXPECT_TRUE(Opens([](FakeUser& user) { user.Presses(Key::Enter); }));
    EXPECT_EQ(current->Name(), "Day");
}

TEST_F(ProfilesDialog, ReportsNoChoiceWhenItIsLeft) {
    for (const auto leave :
         {+[](FakeUser& user) { user.Clicks("cmdCancel"); },
          +[](FakeUser& user) { user.Presses(Key::Escape); }, +[](FakeUser& user) { user.Closes(); }}) {
        EXPECT_FALSE(Opens([&](FakeUser& user) {
            user.Selects("lvProfiles", "Night");
            leave(user);
        }));
        EXPECT_EQ(current->Name(), "Day");
        EXPECT_FALSE(changed);
    }
}

TEST_F(ProfilesDialog, EnablesButtonsOnlyWhileAProfileIsSelected) {
    current.reset();
    Opens([](FakeUser& user) {
        for (const auto& button : kNeedSelection)
            EXPECT_FALSE(user.CanUse(button)) << button;
        EXPECT_TRUE(user.CanUse("cmdNew"));
        user.Selects("lvProfiles", "Day");
        for (const auto& button : kNeedSelection)
            EXPECT_TRUE(user.CanUse(button)) << button;
        user.Closes();
    });
}

TEST_F(ProfilesDialog, DisablesButtonsByItsTimerWhenTheSelectedProfileGoes) {
    Opens([&](FakeUser& user) {
        profiles->Remove("Day");
        user.Waits(Milliseconds(100));
        for (const auto& button : kNeedSelection)
            EXPECT_FALSE(user.CanUse(button)) << button;
        user.Closes();
    });
}

TEST_F(ProfilesDialog, DoesNothingForAProfileThatHasJustGone) {
    EXPECT_FALSE(Opens([&](FakeUser& user) {
        profiles->Remove("Day");
        for (const auto& button : kNeedSelection)
            user.Clicks(button);
        user.Closes();
    }));
    EXPECT_FALSE(changed);
}

// --- New

TEST_F(ProfilesDialog, AddsANewProfileAndSelectsIt) {
    Names("Sales");
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Clicks("cmdNew");
        EXPECT_THAT(user.SeesItems("lvProfiles"), ElementsAre("Day", "Night", "Sales"));
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Sales");
        user.Clicks("cmdChoose");
    }));
    EXPECT_EQ(current, profiles->Item("Sales"));
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesDialog, AsksForTheNewNameInADialogOfItsOwn) {
    host.Expect("frmNewProfile", [](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "New Profile");
        EXPECT_EQ(user.Sees("txtName"), "");
        EXPECT_EQ(user.Window().OwnerForm()->Name(), "frmProfiles");
        user.Closes();
    });
    Opens([](FakeUser& user) {
        user.Clicks("cmdNew");
        user.Closes();
    });
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, RefusesANewNameThatExists) {
    Names("Night");
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        user.Clicks("cmdNew");
        user.Closes();
    });
    BoxSaid(kTaken, "Login Procedure", BoxStyle::Warning);
    EXPECT_THAT(All(), ElementsAre("Day", "Night"));
    EXPECT_FALSE(changed);
}

// --- Copy

TEST_F(ProfilesDialog, CopiesTheContentsUnderTheProposedName) {
    AcceptsTheProposal("Copy of Day");
    Opens([](FakeUser& user) {
        user.Clicks("cmdCopy");
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Copy of Day");
        user.Closes();
    });
    EXPECT_EQ(ColourOf(*profiles->Item("Copy of Day")), "white");
    EXPECT_NE(profiles->Item("Copy of Day")->Tables().Item("Colours"),
              profiles->Item("Day")->Tables().Item("Colours"));
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesDialog, ProposesTheNameOfACopyAgainWithANumber) {
    profiles->Add(std::make_shared<Profile>("Copy of Day"));
    current = profiles->Item("Copy of Day");
    AcceptsTheProposal("Copy of Day2");
    Opens([](FakeUser& user) {
        user.Clicks("cmdCopy");
        user.Closes();
    });
    EXPECT_TRUE(profiles->Exists("Copy of Day2"));
}

TEST_F(ProfilesDialog, ProposesANumberWhenTheCopyExists) {
    profiles->Add(std::make_shared<Profile>("Copy of Day"));
    AcceptsTheProposal("Copy of Day2");
    Opens([](FakeUser& user) {
        user.Clicks("cmdCopy");
        user.Closes();
    });
}

TEST_F(ProfilesDialog, RefusesACopyUnderANameThatExists) {
    Names("Night");
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        user.Clicks("cmdCopy");
        user.Closes();
    });
    BoxSaid(kTaken, "Login Procedure", BoxStyle::Warning);
    EXPECT_EQ(ColourOf(*profiles->Item("Night")), "black");
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, CopiesNothingWhenTheNameIsNotGiven) {
    NamesNothing();
    Opens([](FakeUser& user) {
        user.Clicks("cmdCopy");
        user.Closes();
    });
    EXPECT_EQ(profiles->Count(), 2);
    EXPECT_FALSE(changed);
}

// --- Rename

TEST_F(ProfilesDialog, RenamesAProfile) {
    Names("Noon");
    Opens([](FakeUser& user) {
        user.Clicks("cmdRename");
        EXPECT_THAT(user.SeesItems("lvProfiles"), ElementsAre("Noon", "Night"));
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Noon");
        user.Closes();
    });
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesDialog, KeepsARenamedProfileCurrentAndLastUsed) {
    Names("Noon");
    Opens([](FakeUser& user) {
        user.Clicks("cmdRename");
        user.Closes();
    });
    EXPECT_EQ(current, profiles->Item("Noon"));
    EXPECT_EQ(profiles->LastUsed(), "Noon");
}

TEST_F(ProfilesDialog, ProposesTheOldNameInRenameMode) {
    host.Expect("frmNewProfile", [](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Rename Profile");
        EXPECT_EQ(user.Sees("txtName"), "Day");
        user.Closes();
    });
    Opens([](FakeUser& user) {
        user.Clicks("cmdRename");
        user.Closes();
    });
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, AcceptsTheOldNameWithoutMessageOrChange) {
    AcceptsTheProposal("Day");
    Opens([](FakeUser& user) {
        user.Clicks("cmdRename");
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Day");
        user.Closes();
    });
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, RefusesToRenameToANameThatExists) {
    Names("Night");
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        user.Clicks("cmdRename");
        EXPECT_EQ(user.Focus(), "lvProfiles");
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "Day");
        user.Closes();
    });
    BoxSaid(kTaken, "Login Procedure", BoxStyle::Warning);
    EXPECT_THAT(All(), ElementsAre("Day", "Night"));
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, RenamesNothingThatWentWhileTheNameWasTyped) {
    host.Expect("frmNewProfile", [&](FakeUser& user) {
        profiles->Remove("Day");
        user.Types("txtName", "Noon");
        user.Waits(Milliseconds(100));
        user.Clicks("cmdOK");
    });
    Opens([](FakeUser& user) {
        user.Clicks("cmdRename");
        user.Closes();
    });
    EXPECT_THAT(All(), ElementsAre("Night"));
}

// --- Remove

TEST_F(ProfilesDialog, RemovesAProfileAfterAsking) {
    host.Answer(BoxButton::Yes);
    Opens([](FakeUser& user) {
        user.Selects("lvProfiles", "Night");
        user.Clicks("cmdRemove");
        EXPECT_THAT(user.SeesItems("lvProfiles"), ElementsAre("Day"));
        EXPECT_EQ(user.SeesSelected("lvProfiles"), "");
        user.Closes();
    });
    BoxSaid("Are you sure you wish to remove the 'Night\" profile?", "Remove Profile Night", BoxStyle::YesNo);
    EXPECT_EQ(current, profiles->Item("Day"));
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesDialog, RemovesNothingAfterANo) {
    host.Answer(BoxButton::No);
    Opens([](FakeUser& user) {
        user.Clicks("cmdRemove");
        user.Closes();
    });
    EXPECT_EQ(profiles->Count(), 2);
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, RemovesNothingThatWentWhileTheUserWasAsked) {
    host.Answer(BoxButton::Yes, [&] { profiles->Remove("Day"); });
    Opens([](FakeUser& user) {
        user.Clicks("cmdRemove");
        user.Closes();
    });
    EXPECT_THAT(All(), ElementsAre("Night"));
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesDialog, LeavesNoCurrentProfileWhenThatIsRemoved) {
    host.Answer(BoxButton::Yes);
    Opens([](FakeUser& user) {
        user.Clicks("cmdRemove");
        user.Closes();
    });
    EXPECT_EQ(current, nullptr);
}

// --- Without any profile

TEST_F(ProfilesDialog, ExplainsAnEmptyCollectionBeforeItOpens) {
    MakesAnEmptyCollection();
    host.Answer(BoxButton::OK, [&] { EXPECT_TRUE(host.Shown().empty()); });
    Names("Main");
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Clicks("cmdNew");
        user.Clicks("cmdChoose");
    }));
    BoxSaid(
        "Profiles are used by the client to save groups of configurations.  Please create and choose at "
        "least one "
        "profile to use for this session by clicking the \"New\" button.",
        "Login Procedure", BoxStyle::Information);
    EXPECT_EQ(current->Name(), "Main");
}

TEST_F(ProfilesDialog, EndsWithoutAProfileWhenTheUserGivesUp) {
    MakesAnEmptyCollection();
    host.Answer(BoxButton::OK);
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Opens([](FakeUser& user) { user.Clicks("cmdCancel"); }));
    BoxSaid(
        "A profile has not been created.  You will not be able to continue without a profile.  Click Yes to "
        "create "
        "a profile, or No to quit.",
        "Login Procedure", BoxStyle::YesNo);
}

TEST_F(ProfilesDialog, OpensAgainWhenTheUserWantsToCreateAProfile) {
    MakesAnEmptyCollection();
    host.Answer(BoxButton::OK);
    host.Answer(BoxButton::Yes);
    host.Expect("frmProfiles", [](FakeUser& user) { user.Closes(); });
    Names("Main");
    EXPECT_TRUE(Opens([](FakeUser& user) {
        EXPECT_EQ(user.Focus(), "cmdNew");
        user.Presses(Key::Enter);
        user.Clicks("cmdChoose");
    }));
}

TEST_F(ProfilesDialog, AsksNobodyWhenTheProgramEnds) {
    MakesAnEmptyCollection();
    host.Answer(BoxButton::OK);
    EXPECT_FALSE(Opens([&](FakeUser&) { loop.Quit(); }));
}

TEST_F(ProfilesDialog, AsksAlsoWhenTheLastProfileWasRemoved) {
    profiles->Remove("Night");
    host.Answer(BoxButton::Yes);
    host.Answer(BoxButton::No);
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Clicks("cmdRemove");
        user.Closes();
    }));
    EXPECT_TRUE(changed);
    EXPECT_EQ(current, nullptr);
}

}  // namespace
}  // namespace kq
