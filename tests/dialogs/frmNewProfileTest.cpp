// The dialog that asks for a profile's name, in its two modes, and its filter.
#include "dialogs/DialogsTesting.h"
#include "dialogs/frmNewProfile.h"
#include "platform/Machine.h"

namespace kq {
namespace {

struct NameDialog : DialogScene {
    bool OpensNew(FakeDialogHost::Script script) {
        host.Expect("frmNewProfile", std::move(script));
        return frmNewProfile(machine.platform).GetNewProfile(name, nullptr);
    }
    bool OpensRename(FakeDialogHost::Script script) {
        host.Expect("frmNewProfile", std::move(script));
        return frmNewProfile(machine.platform).RenameProfile(name, nullptr);
    }
    // The user types and waits for OK to come up.
    static void Confirms(FakeUser& user, const std::string& text) {
        user.Types("txtName", text);
        user.Waits(Milliseconds(100));
        user.Clicks("cmdOK");
    }

    std::string name = "Main";
};

TEST_F(NameDialog, ShowsTheTextsForANewProfile) {
    OpensNew([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "New Profile");
        EXPECT_EQ(user.Sees("lblIntro"), "Please enter a name for the new profile:");
        EXPECT_EQ(user.Sees("cmdOK"), "OK");
        EXPECT_EQ(user.Sees("cmdCancel"), "Cancel");
        user.Closes();
    });
}

TEST_F(NameDialog, ShowsTheTextsForRenaming) {
    OpensRename([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Rename Profile");
        EXPECT_EQ(user.Sees("lblIntro"), "Please enter a new name for the profile:");
        EXPECT_EQ(user.Sees("cmdOK"), "OK");
        EXPECT_EQ(user.Sees("cmdCancel"), "Cancel");
        user.Closes();
    });
}

TEST_F(NameDialog, StartsWithTheNameSelected) {
    OpensNew([](FakeUser& user) {
        EXPECT_EQ(user.Sees("txtName"), "Main");
        EXPECT_EQ(user.Focus(), "txtName");
        EXPECT_EQ(user.SeesMarked("txtName"), (Selection{0, 4}));
        user.Closes();
    });
}

TEST_F(NameDialog, TakesNoBlankNameBeforeItsTimerHasTicked) {
    EXPECT_FALSE(OpensNew([](FakeUser& user) {
        user.Waits(Milliseconds(100));
        user.Types("txtName", "  ");
        user.Presses(Key::Enter);
        EXPECT_TRUE(user.IsOpen());
        user.Closes();
    }));
    EXPECT_EQ(name, "Main");
}

TEST_F(NameDialog, ReturnsTheNameInBothModes) {
    EXPECT_TRUE(OpensNew([](FakeUser& user) { Confirms(user, "Sales"); }));
    EXPECT_EQ(name, "Sales");
    EXPECT_TRUE(OpensRename([](FakeUser& user) { Confirms(user, "Stock"); }));
    EXPECT_EQ(name, "Stock");
}

TEST_F(NameDialog, ReturnsTheNameWithoutBlanksAroundIt) {
    EXPECT_TRUE(OpensNew([](FakeUser& user) { Confirms(user, "  North Sales "); }));
    EXPECT_EQ(name, "North Sales");
}

TEST_F(NameDialog, AcceptsANameOfDigits) {
    EXPECT_TRUE(OpensNew([](FakeUser& user) { Confirms(user, "123"); }));
    EXPECT_EQ(name, "123");
}

TEST_F(NameDialog, StartsWithOKDisabled) {
    OpensNew([](FakeUser& user) {
        EXPECT_FALSE(user.CanUse("cmdOK"));
        user.Presses(Key::Enter);
        EXPECT_TRUE(user.IsOpen());
        user.Closes();
    });
}

TEST_F(NameDialog, EnablesOKByItsTimerWhileTheNameIsNotBlank) {
    OpensNew([](FakeUser& user) {
        user.Waits(Milliseconds(100));
        EXPECT_TRUE(user.CanUse("cmdOK"));
        user.Types("txtName", "   ");
        user.Waits(Milliseconds(100));
        EXPECT_FALSE(user.CanUse("cmdOK"));
        user.Types("txtName", "x");
        user.Waits(Milliseconds(100));
        EXPECT_TRUE(user.CanUse("cmdOK"));
        user.Closes();
    });
}

TEST_F(NameDialog, KeepsOKDisabledForBlanks) {
    name = "  ";
    OpensNew([](FakeUser& user) {
        user.Waits(Milliseconds(1000));
        EXPECT_FALSE(user.CanUse("cmdOK"));
        user.Closes();
    });
}

TEST_F(NameDialog, ChangesNothingWhenItIsClosedOrCancelled) {
    EXPECT_FALSE(OpensNew([](FakeUser& user) {
        user.Types("txtName", "x");
        user.Closes();
    }));
    EXPECT_FALSE(OpensRename([](FakeUser& user) {
        user.Types("txtName", "x");
        user.Clicks("cmdCancel");
    }));
    EXPECT_FALSE(OpensNew([](FakeUser& user) { user.Presses(Key::Escape); }));
    EXPECT_EQ(name, "Main");
}

TEST_F(NameDialog, TakesEnterForOK) {
    EXPECT_TRUE(OpensNew([](FakeUser& user) {
        user.Waits(Milliseconds(100));
        user.Presses(Key::Enter);
    }));
    EXPECT_EQ(name, "Main");
}

TEST_F(NameDialog, BelongsToItsOwner) {
    const auto owner = Form::Load(machine.platform, FormRow{.name = "frmOwner", .controls = {}});
    host.Expect("frmNewProfile", [&](FakeUser& user) {
        EXPECT_EQ(user.Window().OwnerForm(), owner);
        user.Closes();
    });
    frmNewProfile(machine.platform).GetNewProfile(name, owner);
}

// --- The filter

struct NameFilter : NameDialog {
    // What the box shows after the user did as told, and where the caret is.
    std::string Leaves(const FakeDialogHost::Script& script) {
        std::string left;
        name = "";
        OpensNew([&](FakeUser& user) {
            script(user);
            left = user.Sees("txtName");
            caret = user.SeesMarked("txtName");
            user.Closes();
        });
        return left;
    }
    std::string LeavesOfTyped(const std::string& text) {
        return Leaves([&](FakeUser& user) { user.Types("txtName", text); });
    }
    std::string LeavesOfPasted(const std::string& text) {
        return Leaves([&](FakeUser& user) { user.Pastes("txtName", text); });
    }
    Selection caret;
};

TEST_F(NameFilter, DropsAColonThatIsTyped) {
    EXPECT_EQ(LeavesOfTyped("a:b"), "ab");
    EXPECT_EQ(caret, (Selection{2, 0}));
}

TEST_F(NameFilter, DropsForbiddenCharactersThatArePasted) {
    EXPECT_EQ(LeavesOfPasted("x*?y"), "xy");
    EXPECT_EQ(LeavesOfPasted("*|\\/:\"<>?'"), "");
}

TEST_F(NameFilter, DropsEveryForbiddenCharacterAlone) {
    for (const char character : std::string("*|\\/:\"<>?'"))
        EXPECT_EQ(LeavesOfPasted(std::string("a") + character + "b"), "ab") << character;
}

TEST_F(NameFilter, DropsLettersOutsideTheSevenBitRange) {
    EXPECT_EQ(LeavesOfTyped("se\u00f1or"), "seor");
    EXPECT_EQ(LeavesOfPasted("\u20ac\U0001F600x\u00e9"), "x");
}

TEST_F(NameFilter, DropsControlCharacters) {
    EXPECT_EQ(LeavesOfPasted(std::string("a\tb\nc\x1F") + "d"), "abcd");
}

TEST_F(NameFilter, KeepsEverythingElse) {
    std::string allowed;
    for (char character = ' '; character < 127; ++character) {
        if (std::string("*|\\/:\"<>?'").find(character) == std::string::npos) allowed += character;
    }
    allowed += '\x7f';
    EXPECT_EQ(LeavesOfPasted(allowed), allowed);
}

TEST_F(NameFilter, LeavesTheCaretAtItsNumber) {
    EXPECT_EQ(Leaves([](FakeUser& user) {
                  user.Types("txtName", "abcd");
                  user.Marks("txtName", {1, 0});
                  user.Types("txtName", ":");
              }),
              "abcd");
    EXPECT_EQ(caret, (Selection{2, 0}));
}

TEST_F(NameFilter, FiltersTheNameThatItStartsWith) {
    name = "se\u00f1or:";
    OpensRename([](FakeUser& user) {
        EXPECT_EQ(user.Sees("txtName"), "seor");
        user.Closes();
    });
}

TEST_F(NameFilter, WorksInTheNextDialogAsWell) {
    EXPECT_EQ(LeavesOfTyped("a:"), "a");
    EXPECT_EQ(LeavesOfTyped("b:"), "b");
}

// A face that cannot write into its box. Its user types a colon.
class BrokenHost final : public DialogHost {
 public:
    BoxButton ShowMessageBox(const std::string&, const std::string&, BoxStyle, Signal<>&) override {
        return BoxButton::OK;
    }
    std::unique_ptr<FormView> CreateView(Form&) override { return std::make_unique<View>(); }
    void RunModal(Form& form) override {
        form.Type(*form.Find("txtName"), "a:", {2, 0});
        stayed_open_ = form.Visible();
    }
    bool StayedOpen() const { return stayed_open_; }
    std::optional<std::string> AskSavePath(const SaveQuestion&, Signal<>&) override { return std::nullopt; }

 private:
    struct View final : FormView {
        void Changed(const Control& control, ControlChange what) override {
            if (control.Name() == "txtName" && what == ControlChange::Text) Raise(RuntimeError::TypeMismatch);
        }
        void Changed(FormChange) override {}
        void Focus(const Control&) override {}
    };
    bool stayed_open_ = false;
};

TEST_F(NameFilter, AnErrorInTheMiddleOfItEndsTheFilterAndNotTheDialog) {
    Platform::Machine parts = machine.platform->Parts();
    const auto broken_host = std::make_shared<BrokenHost>();
    parts.dialogs = broken_host;
    EXPECT_FALSE(frmNewProfile(MakeBundle(parts)).GetNewProfile(name, nullptr));
    EXPECT_TRUE(broken_host->StayedOpen());
    EXPECT_EQ(name, "Main");
    EXPECT_EQ(LeavesOfTyped("b:"), "b");
}

}  // namespace
}  // namespace kq
