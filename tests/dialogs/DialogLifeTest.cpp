// Dialog objects that go while their window is open, loops that quit, programs without a face.
#include <optional>

#include "dialogs/DialogsTesting.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmPassword.h"
#include "dialogs/frmServer.h"
#include "dialogs/frmWait.h"

namespace kq {
namespace {

struct DialogLife : DialogScene {
    bool LogsIn(frmLogin& dialog) { return dialog.Login(text, secret, true, secret, flag, flag, nullptr); }
    std::string text;
    Secret secret;
    bool flag = true;
};

TEST_F(DialogLife, ClosesTheWindowWhenTheObjectGoes) {
    std::optional<frmLogin> dialog(std::in_place, machine.platform);
    host.Expect("frmLogin", [&](FakeUser& user) {
        dialog.reset();
        EXPECT_FALSE(user.IsOpen());
    });
    EXPECT_FALSE(LogsIn(*dialog));
}

TEST_F(DialogLife, ClosesTheDialogOnTopAsWell) {
    std::optional<frmLogin> dialog(std::in_place, machine.platform);
    host.Expect("frmServer", [&](FakeUser& user) {
        dialog.reset();
        EXPECT_FALSE(user.IsOpen());
    });
    host.Expect("frmLogin", [](FakeUser& user) { user.Clicks("cmdChangeServer"); });
    EXPECT_FALSE(LogsIn(*dialog));
}

TEST_F(DialogLife, ReturnsAsCancelledWhenTheLoopQuits) {
    frmLogin dialog(machine.platform);
    host.Expect("frmLogin", [&](FakeUser&) { loop.Quit(); });
    EXPECT_FALSE(LogsIn(dialog));
}

TEST(DialogsWithoutAFace, RaiseAnError) {
    EnglishMachine machine(FakePlatform::Face::None);
    constexpr auto kInvalidCall = NumberOf(RuntimeError::InvalidProcedureCall);
    Secret secret;
    EXPECT_EQ(ErrorOf([&] { frmPassword(machine.platform).GetPassword(secret, secret, nullptr); }).Number(),
              kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { frmWait(machine.platform).ShowWait(300); }).Number(), kInvalidCall);
}

TEST_F(DialogLife, EndsWithTheErrorOfAMissingText) {
    auto bundle = std::make_shared<Platform>(*machine.fakes.platform);
    const Error error = ErrorOf([&] { frmPassword(bundle).GetPassword(secret, secret, nullptr); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_TRUE(host.Shown().empty());
}

}  // namespace
}  // namespace kq
