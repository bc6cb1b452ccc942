// The login dialog as its user and its caller see it.
#include <kqappsession/Error.h>

#include "dialogs/DialogsTesting.h"
#include "dialogs/frmLogin.h"

namespace kq {
namespace {

struct LoginDialog : DialogScene {
    bool Opens(FakeDialogHost::Script script) {
        host.Expect("frmLogin", std::move(script));
        return dialog.Login(answer, use_profiles, icon);
    }
    // What the user sees of the dialog at once.
    void Looks(const std::function<void(FakeUser&)>& look) {
        Opens([&](FakeUser& user) {
            look(user);
            user.Closes();
        });
    }
    static void LogsIn(FakeUser& user) {
        user.Types("txtLoginID", "ann");
        user.Types("txtPassword", "secret");
        user.Clicks("cmdOK");
    }
    void Unchanged() {
        EXPECT_EQ(answer.login_id, "bob");
        EXPECT_EQ(answer.password.Reveal(), "old");
        EXPECT_EQ(answer.new_password.Reveal(), "older");
        EXPECT_TRUE(answer.ask_for_profile);
        EXPECT_FALSE(answer.show_details);
    }

    frmLogin dialog{machine.platform};
    LoginAnswer answer{.login_id = "bob",
                       .password = Secret("old"),
                       .new_password = Secret("older"),
                       .ask_for_profile = true};
    bool use_profiles = true;
    IconPtr icon;
};

TEST_F(LoginDialog, ShowsItsTexts) {
    answer.show_details = true;
    Looks([](FakeUser& user) {
        EXPECT_EQ(user.SeesCaption(), "Please Login");
        EXPECT_EQ(user.Sees("lblLoginID"), "Login ID:");
        EXPECT_EQ(user.Sees("lblPassword"), "Password:");
        EXPECT_EQ(user.Sees("cmdCancel"), "Cancel");
        EXPECT_EQ(user.Sees("cmdOK"), "OK");
        EXPECT_EQ(user.Sees("cmdShowHide"), "Hide <<");
        EXPECT_EQ(user.Sees("lblNewPassword"), "New Password:");
        EXPECT_EQ(user.Sees("cmdChangeServer"), "Change Server");
        EXPECT_EQ(user.Sees("chkAskForProfile"), "Always prompt for profile");
    });
}

TEST_F(LoginDialog, StartsWithTheLoginIdAndEmptyPasswords) {
    answer.show_details = true;
    Looks([](FakeUser& user) {
        EXPECT_EQ(user.Sees("txtLoginID"), "bob");
        EXPECT_EQ(user.Sees("txtPassword"), "");
        EXPECT_EQ(user.Sees("txtNewPassword"), "");
    });
}

TEST_F(LoginDialog, ShowsTheIconThatItIsGiven) {
    icon = std::make_shared<FakeIcon>();
    Looks([&](FakeUser& user) { EXPECT_EQ(user.Window().FormIcon(), icon); });
}

TEST_F(LoginDialog, ReturnsWhatTheUserTyped) {
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Clicks("cmdShowHide");
        user.Types("txtNewPassword", "better");
        user.Unticks("chkAskForProfile");
        LogsIn(user);
    }));
    EXPECT_EQ(answer.login_id, "ann");
    EXPECT_EQ(answer.password.Reveal(), "secret");
    EXPECT_EQ(answer.new_password.Reveal(), "better");
    EXPECT_FALSE(answer.ask_for_profile);
    EXPECT_TRUE(answer.show_details);
}

TEST_F(LoginDialog, ReturnsAnEmptyNewPasswordWhenNoneIsTyped) {
    EXPECT_TRUE(Opens(LogsIn));
    EXPECT_TRUE(answer.new_password.Empty());
}

TEST_F(LoginDialog, KeepsWhatWasTypedInTheMoreAreaWhenThatIsClosed) {
    answer.show_details = true;
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Types("txtNewPassword", "better");
        user.Clicks("cmdShowHide");
        LogsIn(user);
    }));
    EXPECT_EQ(answer.new_password.Reveal(), "better");
    EXPECT_FALSE(answer.show_details);
}

TEST_F(LoginDialog, MasksThePasswords) {
    answer.show_details = true;
    Looks([](FakeUser& user) {
        user.Types("txtPassword", "señor");
        user.Types("txtNewPassword", "ab");
        EXPECT_EQ(user.Sees("txtPassword"), "*****");
        EXPECT_EQ(user.Sees("txtNewPassword"), "**");
        EXPECT_EQ(user.Window().Find("txtPassword")->Text(), "");
    });
}

TEST_F(LoginDialog, AsksForALoginIdFirst) {
    answer.login_id = "";
    host.Answer(BoxButton::OK);
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Clicks("cmdOK");
        user.Closes();
    }));
    BoxSaid("A login ID must be specified.", "Login Procedure", BoxStyle::Warning);
}

TEST_F(LoginDialog, AsksForAPasswordWhenThereIsALoginId) {
    host.Answer(BoxButton::OK);
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Clicks("cmdOK");
        user.Closes();
    }));
    BoxSaid("A password must be specified.", "Login Procedure", BoxStyle::Warning);
}

TEST_F(LoginDialog, StaysOpenAfterAWarning) {
    host.Answer(BoxButton::OK);
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Clicks("cmdOK");
        LogsIn(user);
    }));
}

TEST_F(LoginDialog, AcceptsBlanksAsIdAndPassword) {
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Types("txtLoginID", " ");
        user.Types("txtPassword", "  ");
        user.Clicks("cmdOK");
    }));
    EXPECT_EQ(answer.login_id, " ");
    EXPECT_EQ(answer.password.Reveal(), "  ");
}

TEST_F(LoginDialog, ChangesNothingWhenItIsCancelled) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Clicks("cmdShowHide");
        user.Types("txtLoginID", "ann");
        user.Types("txtPassword", "secret");
        user.Unticks("chkAskForProfile");
        user.Clicks("cmdCancel");
    }));
    Unchanged();
}

TEST_F(LoginDialog, ChangesNothingWhenItIsClosed) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Types("txtLoginID", "ann");
        user.Types("txtPassword", "secret");
        user.Closes();
    }));
    Unchanged();
}

TEST_F(LoginDialog, TakesEnterForOKAndEscapeForCancel) {
    EXPECT_TRUE(Opens([](FakeUser& user) {
        user.Types("txtPassword", "secret");
        user.Presses(Key::Enter);
    }));
    EXPECT_FALSE(Opens([](FakeUser& user) { user.Presses(Key::Escape); }));
}

TEST_F(LoginDialog, StartsAfreshEachTime) {
    EXPECT_FALSE(Opens([](FakeUser& user) {
        user.Types("txtPassword", "secret");
        user.Closes();
    }));
    Looks([](FakeUser& user) { EXPECT_EQ(user.Sees("txtPassword"), ""); });
}

TEST_F(LoginDialog, SelectsTheWholeTextOfABoxOnFocus) {
    answer.show_details = true;
    Looks([](FakeUser& user) {
        user.GoesTo("txtLoginID");
        EXPECT_EQ(user.SeesMarked("txtLoginID"), (Selection{0, 3}));
        user.Types("txtPassword", "secret");
        user.Types("txtNewPassword", "ab");
        user.GoesTo("txtPassword");
        EXPECT_EQ(user.SeesMarked("txtPassword"), (Selection{0, 6}));
        user.GoesTo("txtNewPassword");
        EXPECT_EQ(user.SeesMarked("txtNewPassword"), (Selection{0, 2}));
    });
}

TEST_F(LoginDialog, IsReachedByTabInReadingOrder) {
    answer.show_details = true;
    Looks([](FakeUser& user) {
        std::string way = user.Focus();
        for (int i = 0; i < 7; ++i) {
            user.Presses(Key::Tab);
            way += " " + user.Focus();
        }
        EXPECT_EQ(way,
                  "txtPassword cmdOK cmdCancel cmdShowHide txtNewPassword cmdChangeServer chkAskForProfile "
                  "txtLoginID");
    });
}

TEST_F(LoginDialog, BeginsWithThePasswordWhenItKnowsTheLoginId) {
    Looks([](FakeUser& user) { EXPECT_EQ(user.Focus(), "txtPassword"); });
}

TEST_F(LoginDialog, BeginsWithTheLoginIdWhenThereIsNone) {
    answer.login_id = "";
    Looks([](FakeUser& user) { EXPECT_EQ(user.Focus(), "txtLoginID"); });
}

TEST_F(LoginDialog, GoesBackToTheBoxThatIsMissing) {
    host.Answer(BoxButton::OK);
    host.Answer(BoxButton::OK);
    Looks([](FakeUser& user) {
        user.Clears("txtLoginID");
        user.Clicks("cmdOK");
        EXPECT_EQ(user.Focus(), "txtLoginID");
        user.Types("txtLoginID", "ann");
        user.Presses(Key::Enter);
        EXPECT_EQ(user.Focus(), "txtPassword");
    });
}

// --- The "more" area

TEST_F(LoginDialog, EndsWhereTheMoreAreaBeginsWhenThatIsClosed) {
    Looks([](FakeUser& user) {
        EXPECT_EQ(user.Window().Height(), (FormHeight{FormHeight::Rule::EndsAt, 0, "Picture2"}));
        EXPECT_EQ(user.Sees("cmdShowHide"), "Show More >>");
        EXPECT_FALSE(user.CanSee("Picture2"));
        EXPECT_FALSE(user.CanSee("txtNewPassword"));
        EXPECT_FALSE(user.CanUse("cmdChangeServer"));
        EXPECT_TRUE(user.CanSee("Picture1"));
    });
}

TEST_F(LoginDialog, Is3645TwipsHighWhenTheMoreAreaIsOpen) {
    answer.show_details = true;
    Looks([](FakeUser& user) {
        EXPECT_EQ(user.Window().Height(), (FormHeight{FormHeight::Rule::Outer, 3645}));
        EXPECT_TRUE(user.CanUse("txtNewPassword"));
        EXPECT_TRUE(user.CanUse("cmdChangeServer"));
    });
}

TEST_F(LoginDialog, Is3360TwipsHighWithoutTheCheckBox) {
    answer.show_details = true;
    use_profiles = false;
    Looks([](FakeUser& user) {
        EXPECT_EQ(user.Window().Height(), (FormHeight{FormHeight::Rule::Outer, 3360}));
        EXPECT_FALSE(user.CanSee("chkAskForProfile"));
    });
}

TEST_F(LoginDialog, IsAsBeforeAfterTwoClicksOnTheButtonOfTheMoreArea) {
    Looks([](FakeUser& user) {
        const FormHeight before = user.Window().Height();
        user.Clicks("cmdShowHide");
        EXPECT_EQ(user.Window().Height(), (FormHeight{FormHeight::Rule::Outer, 3645}));
        EXPECT_EQ(user.Sees("cmdShowHide"), "Hide <<");
        user.Clicks("cmdShowHide");
        EXPECT_EQ(user.Window().Height(), before);
        EXPECT_EQ(user.Sees("cmdShowHide"), "Show More >>");
    });
}

TEST_F(LoginDialog, ShowsWhetherTheUserIsAskedForAProfile) {
    answer.show_details = true;
    Looks([](FakeUser& user) { EXPECT_TRUE(user.SeesTicked("chkAskForProfile")); });
    answer.ask_for_profile = false;
    Looks([](FakeUser& user) { EXPECT_FALSE(user.SeesTicked("chkAskForProfile")); });
}

TEST_F(LoginDialog, LeavesTheChoiceOfTheProfileAloneWhenProfilesAreNotUsed) {
    use_profiles = false;
    EXPECT_TRUE(Opens(LogsIn));
    EXPECT_TRUE(answer.ask_for_profile);
}

// --- The way to the server dialog

struct ServerOfLogin : LoginDialog {
    ServerOfLogin() {
        answer.show_details = true;
        dialog.GetAddressPort = [](ServerSettings& server) { server = {"zeb", 7710, 10'000, true}; };
        dialog.SaveAddressPort = [this](const ServerSettings& server) {
            saved += server.address + " " + std::to_string(server.port) + " " +
                     std::to_string(server.time_out) + (server.use_as_server_for_login ? " yes" : " no");
        };
    }
    void ChangesServer(FakeDialogHost::Script script) {
        host.Expect("frmServer", std::move(script));
        Looks([](FakeUser& user) {
            user.Clicks("cmdChangeServer");
            EXPECT_TRUE(user.IsOpen());
        });
    }

    std::string saved;
};

TEST_F(ServerOfLogin, ShowsTheSettingsOfTheOwnerWithoutAnIcon) {
    icon = std::make_shared<FakeIcon>();
    ChangesServer([](FakeUser& user) {
        EXPECT_EQ(user.Sees("txtAddress"), "zeb");
        EXPECT_EQ(user.Sees("txtPort"), "7710");
        EXPECT_EQ(user.Sees("txtTimeOut"), "10");
        EXPECT_TRUE(user.SeesTicked("chkUseASServerforLogin"));
        EXPECT_EQ(user.Window().FormIcon(), nullptr);
        EXPECT_EQ(user.Window().OwnerForm()->Name(), "frmLogin");
        user.Closes();
    });
}

TEST_F(ServerOfLogin, SavesWhatTheUserConfirmed) {
    ChangesServer([](FakeUser& user) {
        user.Types("txtPort", "80");
        user.Unticks("chkUseASServerforLogin");
        user.Clicks("cmdOK");
    });
    EXPECT_EQ(saved, "zeb 80 10000 no");
}

TEST_F(ServerOfLogin, SavesNothingWhenTheUserCancels) {
    ChangesServer([](FakeUser& user) {
        user.Types("txtPort", "80");
        user.Clicks("cmdCancel");
    });
    EXPECT_EQ(saved, "");
}

TEST_F(ServerOfLogin, ShowsEmptySettingsWithoutAnOwner) {
    dialog.GetAddressPort = nullptr;
    dialog.SaveAddressPort = nullptr;
    ChangesServer([](FakeUser& user) {
        EXPECT_EQ(user.Sees("txtAddress"), "");
        user.Types("txtPort", "80");
        user.Clears("txtTimeOut");
        user.Types("txtTimeOut", "5");
        user.Clicks("cmdOK");
    });
}

TEST_F(ServerOfLogin, EndsWithTheErrorOfTheOwner) {
    dialog.GetAddressPort = [](auto&&...) { Raise(RuntimeError::TypeMismatch); };
    const Error error = ErrorOf([&] { Opens([](FakeUser& user) { user.Clicks("cmdChangeServer"); }); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::TypeMismatch));
}

}  // namespace
}  // namespace kq
