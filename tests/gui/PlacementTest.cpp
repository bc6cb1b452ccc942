// The ten values of a window's placement, there and back.
#include <QWidget>

#include <gtest/gtest.h>

#include "platform/qt/QtWindowPlacement.h"

namespace kq {
namespace {

class WindowPlacements : public testing::Test {
 protected:
    WindowPlacements() { window_.setGeometry(100, 80, 400, 300); }
    Placement Get() { return placements_->Get(window_.winId()).value_or(Placement{}); }
    bool Set(const Placement& placement) { return placements_->Set(window_.winId(), placement); }
    static Placement At(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
        Placement placement;
        placement.normal_left = left;
        placement.normal_top = top;
        placement.normal_right = right;
        placement.normal_bottom = bottom;
        return placement;
    }

    QWidget window_;
    std::shared_ptr<WindowPlacement> placements_ = MakeQtWindowPlacement();
};

TEST_F(WindowPlacements, TellTheRectangleWithItsEdges) {
    window_.show();
    const QRect outer = window_.frameGeometry();
    EXPECT_EQ(Get(),
              At(outer.left(), outer.top(), outer.left() + outer.width(), outer.top() + outer.height()));
}

TEST_F(WindowPlacements, ComeBackAsTheyWereSet) {
    window_.show();
    Placement placement = At(40, 50, 540, 450);
    placement.max_position_x = 7;
    placement.max_position_y = 8;
    EXPECT_TRUE(Set(placement));
    EXPECT_EQ(Get(), placement);
}

TEST_F(WindowPlacements, TellOfAMaximisedWindowWhereItGoesBackTo) {
    window_.show();
    const Placement before = Get();
    window_.showMaximized();
    Placement maximised = before;
    maximised.show_command = 3;
    EXPECT_EQ(Get(), maximised);
}

TEST_F(WindowPlacements, MaximiseAndGiveBackTheNormalRectangle) {
    window_.show();
    Placement placement = At(40, 50, 540, 450);
    placement.show_command = 3;
    EXPECT_TRUE(Set(placement));
    EXPECT_TRUE(window_.isMaximized());
    EXPECT_EQ(Get(), placement);
}

TEST_F(WindowPlacements, MinimiseAWindowThatGoesBackToMaximised) {
    window_.show();
    Placement placement = At(40, 50, 540, 450);
    placement.show_command = 2;
    placement.flags = 3;
    placement.min_position_x = 1;
    placement.min_position_y = 2;
    EXPECT_TRUE(Set(placement));
    EXPECT_TRUE(window_.isMinimized());
    EXPECT_EQ(Get(), placement);
}

TEST_F(WindowPlacements, AreAppliedThoughNoScreenIsSoLarge) {
    window_.show();
    EXPECT_TRUE(Set(At(5000, 4000, 5400, 4300)));
    EXPECT_EQ(Get(), At(5000, 4000, 5400, 4300));
}

TEST_F(WindowPlacements, ShowAndHide) {
    Placement placement = At(40, 50, 540, 450);
    EXPECT_TRUE(Set(placement));
    EXPECT_TRUE(window_.isVisible());
    placement.show_command = 0;
    EXPECT_TRUE(Set(placement));
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(WindowPlacements, AreNoneOfWhatIsNoWindow) {
    EXPECT_EQ(placements_->Get(12345), std::nullopt);
    EXPECT_FALSE(placements_->Set(12345, {}));
}

}  // namespace
}  // namespace kq
