// Shortcuts that start the program with a profile.
#include "dialogs/ProfilesTesting.h"

namespace kq {
namespace {

struct ProfileShortcut : ProfilesScene {
    void Makes() {
        Opens([](FakeUser& user) {
            user.Clicks("cmdShortcut");
            user.Closes();
        });
    }
    FakeShortcuts& shortcuts = *machine.fakes.shortcuts;
};

TEST_F(ProfileShortcut, AsksWhereOnTheDesktopItIsToBe) {
    host.AnswerPath("/home/user/Desktop/x.lnk");
    Makes();
    const SaveQuestion& question = host.Questions().at(0);
    EXPECT_EQ(question.title, "Create shortcut for profile Day:");
    EXPECT_EQ(question.folder, "/home/user/Desktop");
    EXPECT_EQ(question.filter, "Shortcut|*.lnk");
    EXPECT_EQ(question.extension, "lnk");
    EXPECT_EQ(question.file_name, "Day");
}

TEST_F(ProfileShortcut, StartsTheProgramWithTheProfile) {
    host.AnswerPath("/home/user/Desktop/x.lnk");
    Makes();
    const Shortcut& made = shortcuts.made.at("/home/user/Desktop/x.lnk");
    EXPECT_EQ(made.folder, "C:\\Trader");
    EXPECT_EQ(made.program, "trader.exe");
    EXPECT_EQ(made.arguments, "/Profile \"Day\"");
    EXPECT_EQ(made.description, "This runs the Trader application using the Day profile.");
}

TEST_F(ProfileShortcut, NamesAProfileThatTheDialogThenSelects) {
    host.AnswerPath("x");
    Makes();
    EXPECT_EQ(ProfileInCommand(shortcuts.made.at("x").arguments), "Day");
}

TEST_F(ProfileShortcut, TakesThePlatformsKindOfFile) {
    shortcuts.extension = "desktop";
    host.AnswerPath("x");
    Makes();
    EXPECT_EQ(host.Questions().at(0).filter, "Shortcut|*.desktop");
}

TEST_F(ProfileShortcut, ProposesAFileNameThatEverySystemTakes) {
    profiles->Rename("Day", "Day/\u00f1:1");
    host.AnswerPath("x");
    Makes();
    EXPECT_EQ(host.Questions().at(0).file_name, "Day1");
}

TEST_F(ProfileShortcut, IsNotMadeWhenTheUserCancels) {
    host.AnswerPath(std::nullopt);
    Makes();
    EXPECT_TRUE(shortcuts.made.empty());
}

TEST_F(ProfileShortcut, FailsWithoutAWord) {
    shortcuts.can_create = false;
    shortcuts.desktop.reset();
    host.AnswerPath("x");
    Makes();
    EXPECT_EQ(host.Questions().at(0).folder, "");
    EXPECT_TRUE(host.Boxes().empty());
    EXPECT_FALSE(changed);
}

TEST_F(ProfileShortcut, CannotBeMadeWithoutTheNameOfTheProgram) {
    program.exe_name = "";
    Opens([](FakeUser& user) {
        EXPECT_FALSE(user.CanUse("cmdShortcut"));
        EXPECT_TRUE(user.CanUse("cmdChoose"));
        user.Closes();
    });
}

}  // namespace
}  // namespace kq
