// Where windows come: the same place for all of one login, and nothing in them moves.
#include <QDialog>
#include <QPushButton>
#include <QScreen>

#include <gtest/gtest.h>

#include "dialogs/frmLogin.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmServer.h"
#include "dialogs/frmWait.h"
#include "gui/Scenes.h"
#include "platform/Machine.h"

namespace kq {
namespace {

class PlacesOfWindows : public testing::Test {
 protected:
    // Visits and closes each window in its turn; the wait window comes between the dialogs.
    void ShowsALogin(const Stage::Act& visit) {
        const auto visit_and_close = [visit](QWidget& window) {
            visit(window);
            window.close();
        };
        for (const auto* const form : {"frmServer", "frmLogin", "frmWait", "MessageBox", "frmPassword"})
            stage.When(form, visit_and_close);
        ServerSettings server;
        LoginAnswer answer;
        frmServer(stage.Machine()).GetServerInfo(server, nullptr);
        frmLogin(stage.Machine()).Login(answer, false, nullptr);
        frmWait wait(stage.Machine());
        wait.ShowWait(300);
        stage.Await([] { return FindWindow("frmWait") == nullptr; }, "the end of the wait");
        wait.HideWait();
        stage.Machine()->Parts().dialogs->ShowMessageBox(std::string(200, 'a') + " b", "Title",
                                                         BoxStyle::YesNo);
        frmPassword(stage.Machine()).GetPassword(answer.password, answer.new_password, nullptr);
    }
    // Odd sizes have no pixel in the middle.
    static void ExpectInTheMiddleOf(const QRect& place, const QWidget& window) {
        const QPoint off = QRect(window.pos(), window.size()).center() - place.center();
        EXPECT_LE(off.manhattanLength(), 4) << window.objectName().toStdString();
    }
    Stage stage;
};

TEST_F(PlacesOfWindows, AreTheMiddleOfTheProgramsWindow) {
    QWidget program;
    program.setGeometry(300, 200, 500, 300);
    program.show();
    program.activateWindow();
    stage.Await([&] { return program.isActiveWindow(); }, "the program's window");
    ShowsALogin([&](QWidget& window) { ExpectInTheMiddleOf(program.frameGeometry(), window); });
}

TEST_F(PlacesOfWindows, AreTheMiddleOfTheScreenWithoutAWindowOfTheProgram) {
    ShowsALogin([](QWidget& window) { ExpectInTheMiddleOf(window.screen()->availableGeometry(), window); });
}

TEST_F(PlacesOfWindows, FollowTheUserWhoMovesOne) {
    std::optional<QRect> moved_to;
    ShowsALogin([&](QWidget& window) {
        if (moved_to) return ExpectInTheMiddleOf(*moved_to, window);
        window.move(500, 250);
        moved_to = QRect(window.pos(), window.size());
    });
}

TEST_F(PlacesOfWindows, StayOnTheScreenThoughTheProgramsWindowIsAtItsEdge) {
    QWidget program;
    program.setGeometry(0, 0, 80, 60);
    program.show();
    program.activateWindow();
    stage.Await([&] { return program.isActiveWindow(); }, "the program's window");
    ShowsALogin([](QWidget& window) {
        EXPECT_TRUE(window.screen()->availableGeometry().contains(QRect(window.pos(), window.size())));
    });
}

// --- What moves when the login window shows more

class MoreOfTheLogin : public testing::TestWithParam<std::int32_t> {};

TEST_P(MoreOfTheLogin, LeavesTheButtonsWhereTheyAre) {
    Stage stage(GetParam());
    const auto login = std::ranges::find(Scenes(), "login", &Scene::name);
    login->show(stage, [&](QWidget& window) {
        const auto places = [&] {
            std::vector<QRect> all;
            for (const auto* const button : {"cmdOK", "cmdCancel", "cmdShowHide"}) {
                const QWidget& shown = In(window, button);
                all.emplace_back(shown.mapToGlobal(QPoint()), shown.size());
            }
            return all;
        };
        const auto closed = places();
        In<QPushButton>(window, "cmdShowHide").click();
        EXPECT_TRUE(In(window, "txtNewPassword").isVisible());
        EXPECT_EQ(places(), closed);
        In<QPushButton>(window, "cmdShowHide").click();
        EXPECT_EQ(places(), closed);
    });
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, MoreOfTheLogin, testing::ValuesIn(kLanguages),
                         testing::PrintToStringParamName());

TEST(MoreOfTheLoginAtTheLowerEdge, MovesTheWindowUpOntoTheScreen) {
    Stage stage;
    const auto login = std::ranges::find(Scenes(), "login", &Scene::name);
    login->show(stage, [](QWidget& window) {
        const QRect screen = window.screen()->availableGeometry();
        window.move(window.x(), screen.bottom() - window.frameGeometry().height());
        In<QPushButton>(window, "cmdShowHide").click();
        EXPECT_TRUE(screen.contains(window.frameGeometry()));
    });
}

}  // namespace
}  // namespace kq
