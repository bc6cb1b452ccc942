// The wait window: it comes, changes its texts, and goes.
#include <limits>
#include <optional>

#include "dialogs/DialogsTesting.h"
#include "dialogs/frmWait.h"

namespace kq {
namespace {

struct WaitDialog : DialogScene {
    ~WaitDialog() override { wait.reset(); }
    void Says(const std::string& caption, const std::string& message) {
        EXPECT_EQ(host.Window("frmWait").SeesCaption(), caption);
        EXPECT_EQ(host.Window("frmWait").Sees("lblPleaseWait"), message);
    }
    std::optional<frmWait> wait{std::in_place, machine.platform};
};

TEST_F(WaitDialog, ShowsCaptionAndMessageOfEveryStep) {
    for (std::int32_t id = 300; id <= 312; id += 2) {
        wait->ShowWait(id, {"Main"});
        Says(Texts(machine.platform).LoadText(id), Texts(machine.platform).Text(id + 1, {"Main"}));
    }
}

TEST_F(WaitDialog, PutsTheArgumentsIntoTheMessage) {
    wait->ShowWait(308, {"Main"});
    Says("Getting Profile...", "Attempting to retrieve profile \"Main\".  Please wait.");
}

TEST_F(WaitDialog, StandsAboveAllWindowsAndLetsTheCallerGoOn) {
    wait->ShowWait(300);
    EXPECT_FALSE(host.Window("frmWait").Window().Modal());
}

TEST_F(WaitDialog, OnlyChangesItsTextsWhenItIsShownAgain) {
    wait->ShowWait(300);
    wait->ShowWait(302);
    Says("Logging In...", "Attempting to log in.  Please Wait.");
    EXPECT_EQ(host.OpenWindows(), 1U);
    EXPECT_EQ(host.Shown().size(), 2U);
    wait->HideWait();
    EXPECT_EQ(host.OpenWindows(), 0U);
}

TEST_F(WaitDialog, HidesWithoutBeingShown) {
    wait->HideWait();
    wait->ShowWait(300);
    wait->HideWait();
    wait->HideWait();
    EXPECT_EQ(host.OpenWindows(), 0U);
}

TEST_F(WaitDialog, ComesAgainAfterTheUserClosedIt) {
    wait->ShowWait(300);
    FakeUser& user = host.Window("frmWait");
    user.Closes();
    EXPECT_FALSE(user.IsOpen());
    wait->ShowWait(302);
    Says("Logging In...", "Attempting to log in.  Please Wait.");
}

TEST_F(WaitDialog, ReportsThatTheUserClosedIt) {
    Owner owner;
    int closed = 0;
    wait->Closed.Connect(owner, [&] {
        ++closed;
        wait->HideWait();
    });
    wait->ShowWait(300);
    wait->HideWait();
    EXPECT_EQ(closed, 0);
    wait->ShowWait(300);
    host.Window("frmWait").Closes();
    wait->ShowWait(302);
    host.Window("frmWait").Presses(Key::Escape);
    EXPECT_EQ(closed, 2);
}

TEST_F(WaitDialog, CanBeHiddenAfterTheUserClosedIt) {
    wait->ShowWait(300);
    host.Window("frmWait").Presses(Key::Escape);
    wait->HideWait();
    EXPECT_EQ(host.OpenWindows(), 0U);
}

TEST_F(WaitDialog, GoesWithItsObject) {
    wait->ShowWait(300);
    wait.reset();
    EXPECT_EQ(host.OpenWindows(), 0U);
}

TEST_F(WaitDialog, OverflowsAtTheLargestId) {
    const Error error = ErrorOf([&] { wait->ShowWait(std::numeric_limits<std::int32_t>::max()); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::Overflow));
}

TEST_F(WaitDialog, IsNotShownWithoutItsTexts) {
    const Error error = ErrorOf([&] { wait->ShowWait(314); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_TRUE(host.Shown().empty());
}

}  // namespace
}  // namespace kq
