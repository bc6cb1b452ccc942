// Windows that get their frame from the system some time after they have come.
#include <QWindow>

#include <gtest/gtest.h>

#include "dialogs/frmLogin.h"
#include "forms/qt/QtWindowPlacement.h"
#include "gui/User.h"

namespace kq {
namespace {

constexpr int kEdge = 4;

TEST(FrameThatComesLate, IsPartOfTheHeightOfTheLoginWindow) {
    Stage stage;
    User user(stage);
    Hand manager;
    LoginAnswer answer{.login_id = "ann", .show_details = true};
    stage.When("frmLogin", [&](QWidget& window) {
        const int asked = qRound(3360 / 1440.0 * window.logicalDpiY());
        EXPECT_EQ(window.height(), asked);
        manager.PutIntoFrame(window.winId(), kEdge);
        stage.Await([&] { return window.height() == asked - 4 * kEdge; }, "room for the frame");
        EXPECT_EQ(window.frameGeometry().height(), asked);
        window.close();
    });
    frmLogin(stage.Machine()).Login(answer, false, nullptr);
}

TEST(FrameThatComesLate, IsPartOfTheRectangleOfAPlacement) {
    const Stage stage;
    const auto placements = MakeQtWindowPlacement();
    Hand manager;
    QWidget window;
    Placement placement;
    placement.normal_left = 100;
    placement.normal_top = 80;
    placement.normal_right = 500;
    placement.normal_bottom = 380;
    EXPECT_TRUE(placements->Set(window.winId(), placement));
    EXPECT_EQ(placements->Get(window.winId()), placement);
    ASSERT_TRUE(Await(stage.Loop(), [&] { return window.windowHandle()->isExposed(); }));
    EXPECT_EQ(window.size(), QSize(400, 300));
    manager.PutIntoFrame(window.winId(), kEdge);
    const QSize inner(400 - 2 * kEdge, 300 - 4 * kEdge);
    EXPECT_TRUE(Await(stage.Loop(), [&] { return window.size() == inner; }));
    EXPECT_EQ(window.frameGeometry().size(), QSize(400, 300));
}

}  // namespace
}  // namespace kq
