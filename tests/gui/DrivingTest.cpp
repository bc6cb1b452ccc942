// Each dialog at its real window, worked at with keys and mouse to each of its outcomes.
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/frmLogin.h"
#include "dialogs/frmNewProfile.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmProfiles.h"
#include "dialogs/frmServer.h"
#include "gui/User.h"
#include "platform/TemporaryFolder.h"

namespace kq {
namespace {

std::string TextOf(QWidget& box) {
    return dynamic_cast<QMessageBox&>(box).text().toStdString();
}

class AtTheWindow : public testing::Test {
 protected:
    // The next message box says so and is answered so.
    void BoxSays(const std::string& text, const std::string& answer,
                 const std::string& title = "Login Procedure") {
        stage.When("MessageBox", [=, this](QWidget& box) {
            EXPECT_EQ(TextOf(box), text);
            EXPECT_EQ(box.windowTitle().toStdString(), title);
            user.Answers(box, answer);
        });
    }

    Stage stage;
    User user{stage};
};

// --- Login

class LoginWindow : public AtTheWindow {
 protected:
    bool Login() { return dialog.Login(answer, use_profiles, nullptr); }
    frmLogin dialog{stage.Machine()};
    LoginAnswer answer{.login_id = "ann"};
    bool use_profiles = true;
};

TEST_F(LoginWindow, TakesIdAndPasswordWithEnter) {
    stage.When("frmLogin", [&](QWidget& window) {
        user.Types(window, "txtLoginID", "Bob2");
        user.Presses("Tab");
        user.SeesFocusOn(window, "txtPassword");
        user.TypesHere(window, "txtPassword", "Swordfish 1", "Swordfish 1");
        user.Presses("Return");
    });
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.login_id, "Bob2");
    EXPECT_EQ(answer.password.Reveal(), "Swordfish 1");
}

TEST_F(LoginWindow, BeginsWithThePasswordOfAKnownLoginId) {
    stage.When("frmLogin", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtPassword");
        user.TypesHere(window, "txtPassword", "Swordfish", "Swordfish");
        user.Presses("Return");
    });
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.login_id, "ann");
}

TEST_F(LoginWindow, BeginsWithTheLoginIdWhenThereIsNone) {
    answer.login_id = "";
    stage.When("frmLogin", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtLoginID");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Login());
}

TEST_F(LoginWindow, ShowsOnlyStarsForThePassword) {
    stage.When("frmLogin", [&](QWidget& window) {
        user.Types(window, "txtPassword", "secret");
        EXPECT_EQ(In<QLineEdit>(window, "txtPassword").displayText(), "******");
        user.Clicks(window, "cmdCancel");
    });
    EXPECT_FALSE(Login());
    EXPECT_TRUE(answer.password.Empty());
}

TEST_F(LoginWindow, AsksForWhatIsMissingAndStaysOpen) {
    stage.When("frmLogin", [&](QWidget& window) {
        user.Types(window, "txtLoginID", "x");
        user.Presses("BackSpace");
        user.Clicks(window, "cmdOK");
    });
    BoxSays("A login ID must be specified.", "OK");
    stage.When("frmLogin", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtLoginID");
        user.TypesHere(window, "txtLoginID", "ann", "ann");
        user.Presses("Return");
    });
    BoxSays("A password must be specified.", "OK");
    stage.When("frmLogin", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtPassword");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Login());
}

TEST_F(LoginWindow, OpensItsLowerPartAndTellsSo) {
    stage.When("frmLogin", [&](QWidget& window) {
        const int closed = window.height();
        user.Clicks(window, "cmdShowHide");
        stage.Await([&] { return In(window, "txtNewPassword").isVisible(); }, "the lower part");
        EXPECT_GT(window.height(), closed);
        user.Types(window, "txtPassword", "old");
        user.Types(window, "txtNewPassword", "new");
        user.Clicks(window, "chkAskForProfile");
        stage.Await([&] { return In<QCheckBox>(window, "chkAskForProfile").isChecked(); }, "the tick");
        user.Clicks(window, "cmdOK");
    });
    EXPECT_TRUE(Login());
    EXPECT_TRUE(answer.show_details);
    EXPECT_TRUE(answer.ask_for_profile);
    EXPECT_EQ(answer.new_password.Reveal(), "new");
}

TEST_F(LoginWindow, IsAsBeforeWhenItsLowerPartIsClosedAgain) {
    stage.When("frmLogin", [&](QWidget& window) {
        const QSize closed = window.size();
        user.Presses("s", "Alt_L");  // the access key of "Show More >>"
        stage.Await([&] { return In(window, "txtNewPassword").isVisible(); }, "the lower part");
        user.Clicks(window, "cmdShowHide");
        stage.Await([&] { return window.size() == closed; }, "the first size");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Login());
    EXPECT_FALSE(answer.show_details);
}

TEST_F(LoginWindow, IsCancelledByItsCloseBox) {
    stage.When("frmLogin", [&](QWidget& window) { user.ClosesByTheSystem(window); });
    EXPECT_FALSE(Login());
    EXPECT_EQ(answer.login_id, "ann");
}

TEST_F(LoginWindow, OpensTheServerDialogAndGoesOnAfterIt) {
    std::string saved;
    dialog.GetAddressPort = [](ServerSettings& server) { server = {"zeb", 7710, 5000}; };
    dialog.SaveAddressPort = [&](const ServerSettings& server) { saved = server.address; };
    answer.show_details = true;
    stage.When("frmLogin", [&](QWidget& window) { user.Clicks(window, "cmdChangeServer"); });
    stage.When("frmServer", [&](QWidget& window) {
        EXPECT_FALSE(FindWindow("frmLogin")->isActiveWindow());
        user.Types(window, "txtAddress", "zeb2");
        user.Presses("Return");
    });
    stage.When("frmLogin", [&](QWidget& window) { user.Clicks(window, "cmdCancel"); });
    EXPECT_FALSE(Login());
    EXPECT_EQ(saved, "zeb2");
}

TEST_F(LoginWindow, TakesNoClicksWhileAMessageIsOpen) {
    stage.When("frmLogin", [&](QWidget& window) { user.Clicks(window, "cmdOK"); });
    stage.When("MessageBox", [&](QWidget& box) {
        QWidget& login = *FindWindow("frmLogin");
        login.move(0, 0);  // from under the box
        user.Clicks(login, "cmdCancel");
        user.Answers(box, "OK");
    });
    stage.When("frmLogin", [&](QWidget&) { user.Presses("Escape"); });
    EXPECT_FALSE(Login());
}

// --- Server

class ServerWindow : public AtTheWindow {
 protected:
    bool Ask() { return frmServer(stage.Machine()).GetServerInfo(server, nullptr); }
    ServerSettings server{"zeb", 7710, 5000};
};

TEST_F(ServerWindow, TakesNewValues) {
    stage.When("frmServer", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtAddress");
        user.TypesHere(window, "txtAddress", "login.example.com", "login.example.com");
        user.Types(window, "txtPort", "80x");
        user.Types(window, "txtTimeOut", "1.4");
        user.Clicks(window, "chkUseASServerforLogin");
        stage.Await([&] { return In<QCheckBox>(window, "chkUseASServerforLogin").isChecked(); }, "the tick");
        user.Clicks(window, "cmdOK");
    });
    EXPECT_TRUE(Ask());
    EXPECT_EQ(server.address, "login.example.com");
    EXPECT_EQ(server.port, 80);
    EXPECT_EQ(server.time_out, 1400);
    EXPECT_TRUE(server.use_as_server_for_login);
}

TEST_F(ServerWindow, RefusesAPortAndATimeOut) {
    stage.When("frmServer", [&](QWidget& window) {
        user.Types(window, "txtPort", "65536");
        user.Clicks(window, "txtAddress");
        user.SeesFocusOn(window, "txtAddress");
        user.Presses("Return");
    });
    BoxSays("The port entered is not valid.  Please enter again.", "OK", "KQAppSessionLib");
    stage.When("frmServer", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtPort");
        user.TypesHere(window, "txtPort", "65535", "65535");
        user.Types(window, "txtTimeOut", "61");
        user.Presses("Return");
    });
    BoxSays("Time-out value must be greater than 0 and less than 60 seconds.", "OK", "KQAppSessionLib");
    stage.When("frmServer", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtTimeOut");
        user.TypesHere(window, "txtTimeOut", "60", "60");
        user.Clicks(window, "cmdCancel");
    });
    EXPECT_FALSE(Ask());
    EXPECT_EQ(server.port, 7710);
}

TEST_F(ServerWindow, GoesFromControlToControlByTab) {
    stage.When("frmServer", [&](QWidget& window) {
        for (const auto* const control : {"txtAddress", "txtPort", "txtTimeOut", "chkUseASServerforLogin",
                                          "cmdOK", "cmdCancel", "txtAddress"}) {
            user.SeesFocusOn(window, control);
            user.Presses("Tab");
        }
        user.SeesFocusOn(window, "txtPort");
        user.Presses("c", "Alt_L");  // the access key of "Connection Time-out:"
        user.SeesFocusOn(window, "txtTimeOut");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Ask());
}

TEST_F(ServerWindow, ChangesNothingWhenItIsClosedByItsCloseBox) {
    stage.When("frmServer", [&](QWidget& window) {
        user.Types(window, "txtAddress", "zeb2");
        user.ClosesByTheSystem(window);
    });
    EXPECT_FALSE(Ask());
    EXPECT_EQ(server.address, "zeb");
}

// --- Password

class PasswordWindow : public AtTheWindow {
 protected:
    bool Ask() { return frmPassword(stage.Machine()).GetPassword(old_password, new_password, nullptr); }
    void Fill(QWidget& window, const std::string& first, const std::string& second) {
        user.Types(window, "txtOldPassword", "Old");
        user.Types(window, "txtNewPassword", first);
        user.Types(window, "txtConfirmPassword", second);
        user.Presses("Return");
    }
    Secret old_password, new_password;
};

TEST_F(PasswordWindow, TakesANewPassword) {
    stage.When("frmPassword", [&](QWidget& window) { Fill(window, "Abc", "Abc"); });
    EXPECT_TRUE(Ask());
    EXPECT_EQ(old_password.Reveal(), "Old");
    EXPECT_EQ(new_password.Reveal(), "Abc");
}

TEST_F(PasswordWindow, EmptiesBothNewOnesWhenTheyDiffer) {
    stage.When("frmPassword", [&](QWidget& window) { Fill(window, "Abc", "abc"); });
    BoxSays("The passwords you typed do not match. Type the new password in both text boxes.", "OK",
            "KQAppSessionLib");
    stage.When("frmPassword", [&](QWidget& window) {
        EXPECT_EQ(In<QLineEdit>(window, "txtOldPassword").text(), "Old");
        EXPECT_EQ(In<QLineEdit>(window, "txtNewPassword").text(), "");
        EXPECT_EQ(In<QLineEdit>(window, "txtConfirmPassword").text(), "");
        user.SeesFocusOn(window, "txtNewPassword");
        user.TypesHere(window, "txtNewPassword", "Abc", "Abc");
        user.Clicks(window, "cmdOK");
    });
    BoxSays("Values must be entered for both old password and new password.", "OK", "KQAppSessionLib");
    stage.When("frmPassword", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtConfirmPassword");
        user.ClosesByTheSystem(window);
    });
    EXPECT_FALSE(Ask());
}

TEST_F(PasswordWindow, TakesNothingWhenItIsCancelled) {
    stage.When("frmPassword", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtOldPassword");
        user.TypesHere(window, "txtOldPassword", "Old", "Old");
        user.Clicks(window, "cmdCancel");
    });
    EXPECT_FALSE(Ask());
    EXPECT_TRUE(old_password.Empty());
}

// --- Profiles

class ProfilesWindow : public AtTheWindow {
 protected:
    bool Choose() {
        return frmProfiles(stage.Machine())
            .GetProfile(profiles, current, "", {"Demo", "/opt/demo", "demo"}, nullptr, changed);
    }
    void Has(std::initializer_list<const char*> names) {
        for (const char* const name : names)
            profiles->Add(std::make_shared<Profile>(name));
    }
    // What the list shows.
    static std::vector<std::string> Listed(QWidget& window) {
        std::vector<std::string> names;
        const auto& list = In<QListWidget>(window, "lvProfiles");
        for (int i = 0; i < list.count(); ++i)
            names.push_back(list.item(i)->text().toStdString());
        return names;
    }
    std::shared_ptr<Profiles> profiles = std::make_shared<Profiles>();
    std::shared_ptr<Profile> current;
    bool changed = false;
};

TEST_F(ProfilesWindow, ChoosesByDoubleClick) {
    Has({"Purchasing", "Sales"});
    profiles->SetLastUsed("Sales");
    stage.When("frmProfiles", [&](QWidget& window) { user.ClicksItem(window, "lvProfiles", 1, true); });
    EXPECT_TRUE(Choose());
    EXPECT_EQ(current->Name(), "Sales");
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesWindow, ChoosesByArrowKeysAndEnter) {
    Has({"Purchasing", "Sales"});
    current = profiles->Item("Purchasing");
    stage.When("frmProfiles", [&](QWidget& window) {
        user.SeesFocusOn(window, "lvProfiles");
        user.Presses("Down");
        user.Presses("Return");
    });
    EXPECT_TRUE(Choose());
    EXPECT_EQ(current->Name(), "Sales");
}

TEST_F(ProfilesWindow, OffersWhatNeedsASelectionOnlyWithOne) {
    Has({"Sales"});
    stage.When("frmProfiles", [&](QWidget& window) {
        EXPECT_FALSE(In(window, "cmdRename").isEnabled());
        EXPECT_TRUE(In(window, "cmdNew").isEnabled());
        user.ClicksItem(window, "lvProfiles", 0);
        stage.Await([&] { return In(window, "cmdRename").isEnabled(); }, "the buttons");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Choose());
}

TEST_F(ProfilesWindow, MakesANewProfile) {
    Has({"Sales"});
    stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdNew"); });
    stage.When("frmNewProfile", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtName");
        user.TypesHere(window, "txtName", "Ware*house?", "Warehouse");
        stage.Await([&] { return In(window, "cmdOK").isEnabled(); }, "OK");
        user.Presses("Return");
    });
    stage.When("frmProfiles", [&](QWidget& window) {
        EXPECT_THAT(Listed(window), testing::ElementsAre("Sales", "Warehouse"));
        user.Clicks(window, "cmdChoose");
    });
    EXPECT_TRUE(Choose());
    EXPECT_EQ(current->Name(), "Warehouse");
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesWindow, CopiesAProfileUnderTheNameThatItProposes) {
    Has({"Sales"});
    current = profiles->Item("Sales");
    stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdCopy"); });
    stage.When("frmNewProfile", [&](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), "New Profile");
        EXPECT_EQ(In<QLineEdit>(window, "txtName").text(), "Copy of Sales");
        stage.Await([&] { return In(window, "cmdOK").isEnabled(); }, "OK");
        user.Clicks(window, "cmdOK");
    });
    stage.When("frmProfiles", [&](QWidget& window) {
        EXPECT_THAT(Listed(window), testing::UnorderedElementsAre("Sales", "Copy of Sales"));
        user.ClosesByTheSystem(window);
    });
    EXPECT_FALSE(Choose());
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesWindow, RenamesAProfileButNotToATakenName) {
    Has({"Purchasing", "Sales"});
    current = profiles->Item("Sales");
    const auto rename = [&](const std::string& name) {
        stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdRename"); });
        stage.When("frmNewProfile", [&, name](QWidget& window) {
            EXPECT_EQ(window.windowTitle(), "Rename Profile");
            user.SeesFocusOn(window, "txtName");
            user.TypesHere(window, "txtName", name, name);
            stage.Await([&] { return In(window, "cmdOK").isEnabled(); }, "OK");
            user.Presses("Return");
        });
    };
    rename("Purchasing");
    BoxSays("A profile named Purchasing already exists.", "OK");
    rename("Export");
    stage.When("frmProfiles", [&](QWidget& window) {
        EXPECT_THAT(Listed(window), testing::UnorderedElementsAre("Export", "Purchasing"));
        user.Clicks(window, "cmdCancel");
    });
    EXPECT_FALSE(Choose());
    EXPECT_EQ(current->Name(), "Export");
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesWindow, AsksAgainAsLongAsThereIsNoProfile) {
    const std::string what =
        "Profiles are used by the client to save groups of configurations.  Please create and choose at "
        "least one "
        "profile to use for this session by clicking the \"New\" button.";
    const std::string none =
        "A profile has not been created.  You will not be able to continue without a profile.  Click Yes to "
        "create a profile, or No to quit.";
    BoxSays(what, "OK");
    stage.When("frmProfiles", [&](QWidget&) { user.Presses("Escape"); });
    BoxSays(none, "Yes");
    stage.When("frmProfiles", [&](QWidget& window) {
        user.SeesFocusOn(window, "cmdNew");
        user.Presses("Escape");
    });
    BoxSays(none, "No");
    EXPECT_FALSE(Choose());
}

TEST_F(ProfilesWindow, RemovesAProfileWhenTheUserAgrees) {
    Has({"Purchasing", "Sales"});
    current = profiles->Item("Sales");
    stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdRemove"); });
    BoxSays("Are you sure you wish to remove the 'Sales\" profile?", "Yes", "Remove Profile Sales");
    stage.When("frmProfiles", [&](QWidget& window) {
        EXPECT_THAT(Listed(window), testing::ElementsAre("Purchasing"));
        user.Presses("Escape");
    });
    EXPECT_FALSE(Choose());
    EXPECT_TRUE(changed);
}

TEST_F(ProfilesWindow, KeepsAProfileWhenTheUserDoesNotAgree) {
    Has({"Sales"});
    current = profiles->Item("Sales");
    stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdRemove"); });
    BoxSays("Are you sure you wish to remove the 'Sales\" profile?", "No", "Remove Profile Sales");
    stage.When("frmProfiles", [&](QWidget&) { user.Presses("Escape"); });
    EXPECT_FALSE(Choose());
    EXPECT_TRUE(profiles->Exists("Sales"));
    EXPECT_FALSE(changed);
}

TEST_F(ProfilesWindow, AsksWhereTheShortcutGoes) {
    Has({"Sales"});
    current = profiles->Item("Sales");
    stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdShortcut"); });
    stage.When("SaveDialog", [&](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), "Create shortcut for profile Sales:");
        user.Presses("Escape");
    });
    stage.When("frmProfiles", [&](QWidget&) { user.Presses("Escape"); });
    EXPECT_FALSE(Choose());
}

TEST_F(ProfilesWindow, MakesAShortcutWhereTheUserSays) {
    const TemporaryFolder folder;
    Has({"Sales"});
    current = profiles->Item("Sales");
    stage.When("frmProfiles", [&](QWidget& window) { user.Clicks(window, "cmdShortcut"); });
    stage.When("SaveDialog", [&](QWidget& window) {
        user.Types(window, "fileNameEdit", folder.File("Mine"));
        user.Presses("Return");
    });
    stage.When("frmProfiles", [&](QWidget&) { user.Presses("Escape"); });
    EXPECT_FALSE(Choose());
    EXPECT_THAT(folder.Get("Mine.desktop"), testing::HasSubstr("\"/Profile\" \"Sales\""));
}

// --- New profile

TEST_F(AtTheWindow, NewProfileKeepsOkBackWhileTheNameIsBlank) {
    std::string name = "Sales";
    stage.When("frmNewProfile", [&](QWidget& window) {
        stage.Await([&] { return In(window, "cmdOK").isEnabled(); }, "OK");
        user.TypesHere(window, "txtName", "  ", "  ");
        stage.Await([&] { return !In(window, "cmdOK").isEnabled(); }, "no OK");
        user.Presses("Return");
        user.TypesHere(window, "txtName", "Main ", "  Main ");
        stage.Await([&] { return In(window, "cmdOK").isEnabled(); }, "OK");
        user.Presses("Return");
    });
    EXPECT_TRUE(frmNewProfile(stage.Machine()).RenameProfile(name, nullptr));
    EXPECT_EQ(name, "Main");
}

TEST_F(AtTheWindow, NewProfileLeavesTheNameWhenItIsClosed) {
    std::string name = "Sales";
    stage.When("frmNewProfile", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtName");
        user.TypesHere(window, "txtName", "Main", "Main");
        user.ClosesByTheSystem(window);
    });
    EXPECT_FALSE(frmNewProfile(stage.Machine()).GetNewProfile(name, nullptr));
    stage.When("frmNewProfile", [&](QWidget& window) { user.Clicks(window, "cmdCancel"); });
    EXPECT_FALSE(frmNewProfile(stage.Machine()).GetNewProfile(name, nullptr));
    EXPECT_EQ(name, "Sales");
}

}  // namespace
}  // namespace kq
