// A client with dialogs whose user answers every one of them.
#pragma once

#include "client/LoginFixture.h"

namespace kq {

class InteractiveFixture : public LoginFixture {
 protected:
    InteractiveFixture() : LoginFixture(FakePlatform::Face::WithDialogs), user(*machine.dialogs) {
        StoreServer(FakeZeb::kAddress, "7710");
        login.LoginID = "";  // the dialogs ask for everything
        login.Password = Secret();
        login.Address = "";
        login.Port = 0;
        login.TimeOut = 0;
    }
    ~InteractiveFixture() override {
        EXPECT_EQ(user.ScriptsLeft(), 0U);
        EXPECT_EQ(user.AnswersLeft(), 0U);
        EXPECT_EQ(user.OpenWindows(), 0U);
    }

    void StoreServer(const std::string& address, const std::string& port) {
        Settings().SetSetting("Address", address);
        Settings().SetSetting("Port", port);
    }
    bool Login() { return client->SystemLogin(true, login); }

    // What the user does at the next login dialog.
    void LogsIn(const std::string& new_password = {}) {
        user.Expect("frmLogin", [new_password](FakeUser& at) {
            at.Types("txtLoginID", "ann");
            at.Types("txtPassword", "secret word");
            if (!new_password.empty()) {
                at.Clicks("cmdShowHide");
                at.Types("txtNewPassword", new_password);
            }
            at.Clicks("cmdOK");
        });
    }
    void Cancels(const std::string& form) {
        user.Expect(form, [](FakeUser& at) { at.Clicks("cmdCancel"); });
    }
    // The next question is the text, and is answered so; the wait window is gone while it is asked.
    void IsAsked(const std::string& text, BoxButton answer) {
        questions_.push_back(text);
        user.Answer(answer, [this] { EXPECT_FALSE(WaitIsShown()); });
    }
    bool WaitIsShown() {
        try {
            return user.Window("frmWait").IsOpen();
        } catch (const FakeFailure&) {
            return false;
        }
    }
    void ExpectQuestions() {
        std::vector<std::string> asked;
        for (const auto& box : user.Boxes()) {
            asked.push_back(box.text);
            EXPECT_EQ(box.caption, Texts(platform).LoadText(400));
        }
        EXPECT_EQ(asked, questions_);
    }
    // A failed login whose question is answered with No ends as failed, without an error.
    void ExpectGivenUpAt(const std::string& question) {
        LogsIn();
        IsAsked(question, BoxButton::No);
        EXPECT_FALSE(Login());
        ExpectQuestions();
        EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
    }
    // Yes leads back to the login dialog, where the user gives up.
    void ExpectAgainAfter(const std::string& question) {
        LogsIn();
        IsAsked(question, BoxButton::Yes);
        Cancels("frmLogin");
        EXPECT_FALSE(Login());
        ExpectQuestions();
    }

    FakeDialogHost& user;
    std::vector<std::string> questions_;
};

}  // namespace kq
