// The message boxes: style, caption, text and answer of each kind.
#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"
#include "messages/boxes/MessageBoxes.h"

namespace kq {
namespace {

static_assert(static_cast<int>(BoxStyle::YesNo) == 52 && static_cast<int>(BoxStyle::Error) == 16 &&
              static_cast<int>(BoxStyle::Warning) == 48 && static_cast<int>(BoxStyle::Information) == 64 &&
              static_cast<int>(BoxStyle::YesNoCancel) == 51);
static_assert(static_cast<int>(BoxButton::Yes) == 6 && static_cast<int>(BoxButton::No) == 7 &&
              static_cast<int>(BoxButton::Cancel) == 2);

struct MessageBox : testing::Test {
    void Shows(const std::string& text, const std::string& caption, BoxStyle style) {
        ASSERT_EQ(user.Boxes().size(), 1U);
        EXPECT_EQ(user.LastBox().text, text);
        EXPECT_EQ(user.LastBox().caption, caption);
        EXPECT_EQ(user.LastBox().style, style);
    }

    EnglishMachine machine;
    FakeDialogHost& user = *machine.fakes.dialogs;
    MessageBoxes messages{machine.platform};
};

TEST_F(MessageBox, AsksAQuestionWithYesAndNo) {
    user.Answer(BoxButton::Yes);
    messages.AskYesNo(411);
    Shows("Could not connect to login server.  Would you like to try again?", "Login Procedure",
          BoxStyle::YesNo);
}

TEST_F(MessageBox, TellsYesFromNo) {
    user.Answer(BoxButton::Yes);
    EXPECT_TRUE(messages.AskYesNo(411));
    user.Answer(BoxButton::No);
    EXPECT_FALSE(messages.AskYesNo(411));
}

TEST_F(MessageBox, PutsTheArgumentsIntoTheText) {
    user.Answer(BoxButton::Yes);
    messages.AskYesNo(426, {"3"});
    EXPECT_EQ(user.LastBox().text, "Your password expires in 3 days, do you want to change it now?");
}

TEST_F(MessageBox, HasNoArgumentsInTheCommonCaption) {
    user.Answer(BoxButton::Yes);
    messages.AskYesNo(403, {"x"});
    EXPECT_EQ(user.LastBox().caption, "Login Procedure");
}

TEST_F(MessageBox, AsksUnderATitleOfItsOwn) {
    user.Answer(BoxButton::Yes);
    EXPECT_TRUE(messages.AskYesNoTitled(415, 709, {"Main"}));
    Shows("Password has been changed. Main", "Create shortcut for profile Main:", BoxStyle::YesNo);
}

TEST_F(MessageBox, PutsTheArgumentsIntoATitleWithoutAPlaceholderToo) {
    user.Answer(BoxButton::No);
    EXPECT_FALSE(messages.AskYesNoTitled(712, 711, {"Main"}));
    Shows("Are you sure you wish to remove the 'Main\" profile?", "Remove Profile Main", BoxStyle::YesNo);
}

TEST_F(MessageBox, AsksAQuestionThatCanBeCancelled) {
    for (const BoxButton button : {BoxButton::Yes, BoxButton::No, BoxButton::Cancel}) {
        user.Answer(button);
        EXPECT_EQ(messages.AskYesNoCancel(402), button);
    }
    EXPECT_EQ(user.LastBox().caption, "Login Procedure");
    EXPECT_EQ(user.LastBox().style, BoxStyle::YesNoCancel);
}

TEST_F(MessageBox, ShowsAnError) {
    user.Answer(BoxButton::OK);
    messages.ShowError(414, {"x"});
    Shows("An error occurred while performing the password change:  x.  Password change will be terminated.",
          "Login Procedure", BoxStyle::Error);
}

TEST_F(MessageBox, ShowsAWarning) {
    user.Answer(BoxButton::OK);
    messages.ShowWarning(250);
    Shows("A login ID must be specified.", "Login Procedure", BoxStyle::Warning);
}

TEST_F(MessageBox, ShowsInformation) {
    user.Answer(BoxButton::OK);
    messages.ShowInfo(415);
    Shows("Password has been changed.", "Login Procedure", BoxStyle::Information);
}

TEST_F(MessageBox, IsNotShownWithoutItsText) {
    EXPECT_EQ(ErrorOf([&] { messages.ShowInfo(499); }).Number(), NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_TRUE(user.Boxes().empty());
}

TEST_F(MessageBox, MayOutliveTheHelperThatShowedIt) {
    auto helper = std::make_unique<MessageBoxes>(machine.platform);
    user.Answer(BoxButton::Yes, [&] { helper.reset(); });
    EXPECT_TRUE(helper->AskYesNo(411));
}

TEST(ProgramWithoutAFace, CannotAskAnything) {
    EnglishMachine machine(FakePlatform::Face::None);
    const MessageBoxes messages(machine.platform);
    constexpr auto kInvalidCall = NumberOf(RuntimeError::InvalidProcedureCall);
    EXPECT_EQ(ErrorOf([&] { messages.AskYesNo(411); }).Number(), kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { messages.AskYesNoTitled(712, 711); }).Number(), kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { messages.AskYesNoCancel(402); }).Number(), kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { messages.ShowError(414); }).Number(), kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { messages.ShowWarning(250); }).Number(), kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { messages.ShowInfo(415); }).Number(), kInvalidCall);
}

}  // namespace
}  // namespace kq
