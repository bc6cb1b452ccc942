// The ten values of a window's placement, there and back.
#include <QApplication>
#include <QVBoxLayout>
#include <QWidget>
#include <limits>

#include <gtest/gtest.h>

#include "forms/qt/QtWindowPlacement.h"

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

TEST_F(WindowPlacements, AreLeftAloneByWhatTheyTellThemselves) {
    QWidget unshown, twin;
    for (QWidget* const widget : {&unshown, &twin}) {
        auto* const layout = new QVBoxLayout(widget);
        auto* const content = new QWidget(widget);
        content->setFixedSize(210, 120);
        layout->addWidget(content);
    }
    const auto of_unshown = placements_->Get(unshown.winId());
    ASSERT_TRUE(of_unshown);
    EXPECT_TRUE(placements_->Set(unshown.winId(), *of_unshown));
    twin.show();
    EXPECT_TRUE(unshown.isVisible());
    EXPECT_EQ(unshown.size(), twin.size());

    window_.show();
    const QRect normal = window_.geometry();
    EXPECT_TRUE(Set(Get()));
    EXPECT_EQ(window_.geometry(), normal);

    window_.showMaximized();
    EXPECT_TRUE(Set(Get()));
    EXPECT_TRUE(window_.isMaximized());
    EXPECT_EQ(window_.normalGeometry(), normal);
}

TEST_F(WindowPlacements, CountTheFrameThatAWindowGetsWhenItIsShown) {
    EXPECT_TRUE(Set(At(40, 50, 540, 450)));
    QApplication::processEvents();
    ASSERT_NE(window_.frameGeometry(), window_.geometry());
    EXPECT_EQ(window_.frameGeometry(), QRect(40, 50, 500, 400));
    EXPECT_EQ(Get(), At(40, 50, 540, 450));
}

TEST_F(WindowPlacements, DoNotGrowFromSessionToSession) {
    Placement placement = At(40, 50, 540, 450);
    for (const std::int32_t command : {1, 3, 1}) {
        placement.show_command = command;
        QWidget window;
        EXPECT_TRUE(placements_->Set(window.winId(), placement));
        QApplication::processEvents();
        EXPECT_EQ(placements_->Get(window.winId()), placement) << command;
    }
}

TEST_F(WindowPlacements, TakeNumbersThatNoScreenHas) {
    constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
    for (Placement placement : {At(kLeast, kLeast, kMost, kMost), At(kMost, kMost, kLeast, kLeast)}) {
        placement.show_command = 0;
        EXPECT_TRUE(Set(placement));
        EXPECT_TRUE(window_.size().isValid());
    }
}

TEST_F(WindowPlacements, AreNoneOfWhatIsNoWindow) {
    EXPECT_EQ(placements_->Get(12345), std::nullopt);
    EXPECT_FALSE(placements_->Set(12345, {}));
}

}  // namespace
}  // namespace kq
