// The password dialog as its user and its caller see it.
#include "dialogs/DialogsTesting.h"
#include "dialogs/frmPassword.h"

namespace kq {
namespace {

constexpr auto kMissing = "Values must be entered for both old password and new password.";
constexpr auto kNoMatch = "The passwords you typed do not match. Type the new password in both text boxes.";

struct PasswordDialog : DialogScene {
    bool Opens(FakeDialogHost::Script script) {
        host.Expect("frmPassword", std::move(script));
        return frmPassword(machine.platform).GetPassword(old_password, new_password, icon);
    }
    static void Types(FakeUser& user, const std::string& old, const std::string& wanted,
                      const std::string& again) {
        user.Types("txtOldPassword", old);
        user.Types("txtNewPassword", wanted);
        user.Types("txtConfirmPassword", again);
        user.Clicks("cmdOK");
    }
    void Unchanged() {
        EXPECT_EQ(old_password.Reveal(), "a");
        EXPECT_EQ(new_password.Reveal(), "b");
    }

    Secret old_password{"a"};
    Secret new_password{"b"};
    IconPtr icon;
};

TEST_F(PasswordDialog, ShowsItsTexts) {
    Opens([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Change Password");
        EXPECT_EQ(
            user.Sees("lblIntro"),
            "Your password will now be changed.  Please enter your old password, followed by a new password "
            "for your account.");
        EXPECT_EQ(user.Sees("lblOldPassword"), "Old Password:");
        EXPECT_EQ(user.Sees("lblNewPassword"), "New Password:");
        EXPECT_EQ(user.Sees("lblConfirmPassword"), "Confirm New Password:");
        EXPECT_EQ(user.Sees("cmdOK"), "OK");
        EXPECT_EQ(user.Sees("cmdCancel"), "Cancel");
        user.Closes();
    });
}

TEST_F(PasswordDialog, StartsWithEmptyBoxesAtTheOldPassword) {
    Opens([](FakeUser& user) {
        for (const auto box : {"txtOldPassword", "txtNewPassword", "txtConfirmPassword"})
            EXPECT_EQ(user.Sees(box), "");
        EXPECT_EQ(user.Focus(), "txtOldPassword");
        user.Closes();
    });
}

TEST_F(PasswordDialog, ShowsTheIconThatItIsGiven) {
    icon = std::make_shared<FakeIcon>();
    Opens([&](FakeUser& user) {
        EXPECT_EQ(user.Window().FormIcon(), icon);
        user.Closes();
    });
}

TEST_F(PasswordDialog, ReturnsBothPasswords) {
    EXPECT_TRUE(Opens([](FakeUser& user) { Types(user, "old", "New 1", "New 1"); }));
    EXPECT_EQ(old_password.Reveal(), "old");
    EXPECT_EQ(new_password.Reveal(), "New 1");
}

TEST_F(PasswordDialog, AcceptsTheOldPasswordAsTheNewOne) {
    EXPECT_TRUE(Opens([](FakeUser& user) { Types(user, "same", "same", "same"); }));
}

TEST_F(PasswordDialog, MasksAllPasswords) {
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        Types(user, "old", "ab", "");
        EXPECT_EQ(user.Sees("txtOldPassword"), "***");
        EXPECT_EQ(user.Sees("txtNewPassword"), "**");
        user.Closes();
    });
}

TEST_F(PasswordDialog, GoesBackToTheFirstBoxWhenAllAreEmpty) {
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        user.Clicks("cmdOK");
        EXPECT_EQ(user.Focus(), "txtOldPassword");
        user.Closes();
    });
}

TEST_F(PasswordDialog, AsksForEveryBoxThatIsEmptyAndGoesBackThere) {
    const std::string full[] = {"x", "x", "x"};
    for (int empty = 0; empty < 3; ++empty) {
        std::string text[] = {full[0], full[1], full[2]};
        text[empty].clear();
        host.Answer(BoxButton::OK);
        EXPECT_FALSE(Opens([&](FakeUser& user) {
            Types(user, text[0], text[1], text[2]);
            const std::string boxes[] = {"txtOldPassword", "txtNewPassword", "txtConfirmPassword"};
            EXPECT_EQ(user.Focus(), boxes[empty]);
            user.Closes();
        }));
        BoxSaid(kMissing, "KQAppSessionLib", BoxStyle::Warning);
    }
}

TEST_F(PasswordDialog, ComparesUpperAndLowerCaseApart) {
    host.Answer(BoxButton::OK);
    Opens([](FakeUser& user) {
        Types(user, "old", "Abc", "abc");
        user.Closes();
    });
    BoxSaid(kNoMatch, "KQAppSessionLib", BoxStyle::Warning);
}

TEST_F(PasswordDialog, EmptiesBothNewPasswordsWhenTheyDiffer) {
    host.Answer(BoxButton::OK);
    EXPECT_TRUE(Opens([](FakeUser& user) {
        Types(user, "old", "Abc", "abc");
        EXPECT_EQ(user.Sees("txtOldPassword"), "***");
        EXPECT_EQ(user.Sees("txtNewPassword"), "");
        EXPECT_EQ(user.Sees("txtConfirmPassword"), "");
        EXPECT_EQ(user.Focus(), "txtNewPassword");
        user.Types("txtNewPassword", "n");
        user.Types("txtConfirmPassword", "n");
        user.Clicks("cmdOK");
    }));
    EXPECT_EQ(old_password.Reveal(), "old");
    EXPECT_EQ(new_password.Reveal(), "n");
}

TEST_F(PasswordDialog, SelectsTheWholeTextOfABoxOnFocus) {
    Opens([](FakeUser& user) {
        for (const auto box : {"txtOldPassword", "txtNewPassword", "txtConfirmPassword"}) {
            user.Types(box, "abc");
            user.GoesTo("cmdCancel");
            user.GoesTo(box);
            EXPECT_EQ(user.SeesMarked(box), (Selection{0, 3})) << box;
        }
        user.Closes();
    });
}

TEST_F(PasswordDialog, IsReachedByTabInReadingOrder) {
    Opens([](FakeUser& user) {
        std::string way = user.Focus();
        for (int i = 0; i < 4; ++i) {
            user.Presses(Key::Tab);
            way += " " + user.Focus();
        }
        EXPECT_EQ(way, "txtOldPassword txtNewPassword txtConfirmPassword cmdOK cmdCancel");
        user.Closes();
    });
}

TEST_F(PasswordDialog, ChangesNothingWhenItIsClosed) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Types("txtOldPassword", "old");
        user.Closes();
    }));
    Unchanged();
}

TEST_F(PasswordDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Types("txtOldPassword", "old");
        user.Presses(Key::Escape);
    }));
    Unchanged();
}

TEST_F(PasswordDialog, TakesEnterForOK) {
    EXPECT_TRUE(Opens([](FakeUser& user) {
        for (const auto box : {"txtOldPassword", "txtNewPassword", "txtConfirmPassword"})
            user.Types(box, "x");
        user.Presses(Key::Enter);
    }));
}

}  // namespace
}  // namespace kq
