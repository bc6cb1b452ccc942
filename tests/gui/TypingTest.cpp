// What becomes of the text in a box: when something is pasted, when the focus comes to it.
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>

#include <gtest/gtest.h>

#include "dialogs/frmLogin.h"
#include "dialogs/frmServer.h"
#include "gui/User.h"

namespace kq {
namespace {

class Typing : public testing::Test {
 protected:
    bool Login() { return frmLogin(stage.Machine()).Login(answer, false, nullptr); }
    void Pastes(const char* text) {
        QApplication::clipboard()->setText(text);
        user.Presses("v", "Control_L");
    }
    void Awaits(const QLineEdit& box, const QString& text) {
        stage.Await([&] { return box.text() == text; }, text.toStdString());
    }

    Stage stage;
    User user{stage};
    LoginAnswer answer{.login_id = "ann"};
};

TEST_F(Typing, KeepsTheFirstLineOfWhatIsPasted) {
    ServerSettings server{"zeb", 7710, 5000};
    stage.When("frmServer", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtAddress");
        Pastes("zeb.example.com\r\nsecond\n");
        Awaits(In<QLineEdit>(window, "txtAddress"), "zeb.example.com");
        user.Presses("Return");
    });
    EXPECT_TRUE(frmServer(stage.Machine()).GetServerInfo(server, nullptr));
    EXPECT_EQ(server.address, "zeb.example.com");
}

TEST_F(Typing, KeepsTheFirstLineOfAPasswordThatIsPasted) {
    stage.When("frmLogin", [&](QWidget& window) {
        user.Types(window, "txtPassword", "1");
        Pastes("Swordfish\n");
        Awaits(In<QLineEdit>(window, "txtPassword"), "1Swordfish");
        user.Presses("Return");
    });
    EXPECT_TRUE(Login());
    EXPECT_EQ(answer.password.Reveal(), "1Swordfish");
}

TEST_F(Typing, KeepsWhatStandsBehindWhatIsPasted) {
    stage.When("frmLogin", [&](QWidget& window) {
        const auto& box = In<QLineEdit>(window, "txtLoginID");
        user.Clicks(window, "txtLoginID");
        user.SeesFocusOn(window, "txtLoginID");
        user.Presses("Home");
        Pastes("jo\nsecond");
        Awaits(box, "joann");
        user.TypesHere(window, "txtLoginID", "-", "jo-ann");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Login());
}

TEST_F(Typing, ReplacesTheWholeTextAfterAClickIntoTheBox) {
    stage.When("frmLogin", [&](QWidget& window) {
        const auto& box = In<QLineEdit>(window, "txtLoginID");
        user.SeesFocusOn(window, "txtPassword");
        user.Clicks(window, "txtLoginID");
        stage.Await([&] { return box.selectedText() == "ann"; }, "the whole text selected");
        user.TypesHere(window, "txtLoginID", "bob", "bob");
        user.Clicks(window, "txtLoginID");  // in the box already: places the caret
        user.TypesHere(window, "txtLoginID", "by", "bobby");
        user.Presses("Escape");
    });
    const int usual = QApplication::doubleClickInterval();
    QApplication::setDoubleClickInterval(0);  // this user clicks fast, but one by one
    EXPECT_FALSE(Login());
    QApplication::setDoubleClickInterval(usual);
}

TEST_F(Typing, GoesOnWhereItWasAfterAVisitToAnotherProgram) {
    stage.When("frmLogin", [&](QWidget& window) {
        const auto& box = In<QLineEdit>(window, "txtLoginID");
        user.Types(window, "txtLoginID", "bo");
        user.Presses("Home", "Shift_L");
        stage.Await([&] { return box.hasSelectedText(); }, "a selection");
        user.Presses("End");
        stage.Await([&] { return !box.hasSelectedText(); }, "the caret");
        user.GoesToAnotherProgram();
        stage.Await([&] { return !box.hasFocus(); }, "the other program");
        user.ComesBackTo(window);
        user.SeesFocusOn(window, "txtLoginID");
        user.TypesHere(window, "txtLoginID", "b", "bob");
        user.Presses("Escape");
    });
    EXPECT_FALSE(Login());
}

}  // namespace
}  // namespace kq
