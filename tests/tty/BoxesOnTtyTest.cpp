// Message boxes, the question for a file and news as lines of a terminal.
#include <fstream>

#include "dialogs/frmWait.h"
#include "forms/tty/TtyPrompter.h"
#include "platform/Machine.h"
#include "platform/TemporaryFolder.h"
#include "tty/TtyScene.h"

namespace kq {
namespace {

using BoxOnTty = TtyScene;

TEST_F(BoxOnTty, ShowsTextAndButtonsByNumber) {
    terminal->Types({"2"});
    EXPECT_EQ(Box(BoxStyle::YesNoCancel), BoxButton::No);
    EXPECT_EQ(terminal->Screen(), "\n!  Title\nGo on?\n  1. Yes\n  2. No\n  3. Cancel\n[1]: 2\n");
}

TEST_F(BoxOnTty, TakesAnEmptyAnswerForTheFirstButton) {
    terminal->Types({""});
    EXPECT_EQ(Box(BoxStyle::YesNo), BoxButton::Yes);
}

TEST_F(BoxOnTty, TakesTheBeginningOfAButtonsTextInAnyCase) {
    terminal->Types({"ca"});
    EXPECT_EQ(Box(BoxStyle::YesNoCancel), BoxButton::Cancel);
}

TEST_F(BoxOnTty, AsksAgainAfterWhatIsNoAnswer) {
    terminal->Types({"0", "4", "perhaps", "3x", "1"});
    EXPECT_EQ(Box(BoxStyle::YesNoCancel), BoxButton::Yes);
}

TEST_F(BoxOnTty, TakesTheInterruptKeyForTheMildestAnswer) {
    for (const auto& [style, button] : {std::pair{BoxStyle::YesNoCancel, BoxButton::Cancel},
                                        {BoxStyle::YesNo, BoxButton::No},
                                        {BoxStyle::Warning, BoxButton::OK}}) {
        terminal->PressesInterrupt();
        EXPECT_EQ(Box(style), button);
    }
}

TEST_F(BoxOnTty, TakesTheEndOfTheInputForTheMildestAnswer) {
    EXPECT_EQ(Box(BoxStyle::YesNoCancel), BoxButton::Cancel);
}

TEST_F(BoxOnTty, EndsWhenItIsWithdrawn) {
    Signal<> withdrawn;
    terminal->Waits([&] { withdrawn(); });
    EXPECT_EQ(platform->Parts().dialogs->ShowMessageBox("Go on?", "Title", BoxStyle::YesNoCancel, withdrawn),
              BoxButton::Cancel);
}

TEST_F(BoxOnTty, EndsWhenTheProgramDoes) {
    terminal->Waits([&] { machine.fakes.loop->Quit(); });
    EXPECT_EQ(Box(BoxStyle::YesNo), BoxButton::No);
}

TEST_F(BoxOnTty, IsAskedAgainAfterAnotherOneCameBetween) {
    terminal->Waits([&] {
        terminal->Types({"1"});
        Box(BoxStyle::Information);
        terminal->Types({"2"});
    });
    EXPECT_EQ(Box(BoxStyle::YesNo), BoxButton::No);
    EXPECT_TRUE(terminal->Shows("  1. OK\n[1]: 1\n\n!  Title\nGo on?\n  1. Yes\n  2. No\n[1]: 2\n"))
        << terminal->Screen();
}

TEST_F(BoxOnTty, TakesAWholeTextBeforeOneThatOnlyBeginsSo) {
    TtyPrompter prompter(machine.fakes.loop, terminal, TtyWordsOf(1033));
    terminal->Types({"Sales", "sales n", "sal", " 3 "});
    const std::vector<std::string> names{"Sales North", "Sales", "Stock"};
    const auto ask = [&] { return prompter.Choose({}, names, std::nullopt, [] { return false; }).index; };
    EXPECT_EQ(ask(), 1U);
    EXPECT_EQ(ask(), 0U);
    EXPECT_EQ(ask(), 2U);  // "sal" could be two of them
}

TEST_F(BoxOnTty, AsksAgainAfterWhatNoKeyboardTypes) {
    terminal->Types({"\x1b[A", "\xff", "2"});
    EXPECT_EQ(Box(BoxStyle::YesNo), BoxButton::No);
    EXPECT_TRUE(terminal->Shows("\n[1]: 2\n"));
}

TEST_F(BoxOnTty, BreaksLongTextsAtBlanks) {
    terminal->SetWidth(12);
    terminal->Types({""});
    platform->Parts().dialogs->ShowMessageBox("No server.  Start again, please?", "A long caption",
                                              BoxStyle::Error);
    EXPECT_EQ(terminal->Screen(),
              "\n!! A long\ncaption\nNo server.\nStart again,\nplease?\n  1. OK\n[1]: \n");
}

TEST_F(BoxOnTty, KeepsLinesAndBlanksThatFit) {
    terminal->SetWidth(80);
    terminal->Types({""});
    platform->Parts().dialogs->ShowMessageBox("One.  Two.\r\n\nThree.", "Title", BoxStyle::Error);
    EXPECT_TRUE(terminal->Shows("\nOne.  Two.\n\nThree.\n"));
}

TEST_F(BoxOnTty, LetsNoCaptionMakeLines) {
    terminal->Types({""});
    platform->Parts().dialogs->ShowMessageBox("Text", "Title\nPassword:", BoxStyle::Error);
    EXPECT_TRUE(terminal->Shows("!! Title Password:\nText\n"));
}

TEST_F(BoxOnTty, LetsNoTextSteerTheTerminal) {
    terminal->Types({""});
    platform->Parts().dialogs->ShowMessageBox(
        "a\x1b[2Jb\xc2\x9b"
        "c\rd\x7f\ne",
        "Title", BoxStyle::Error);
    EXPECT_TRUE(terminal->Shows("a?[2Jb?c?d?\ne\n")) << terminal->Screen();
}

TEST_F(BoxOnTty, LetsNoTextTurnTheDirectionOfReading) {
    terminal->Types({""});
    platform->Parts().dialogs->ShowMessageBox("a\u202Eb\u2066c\u2028d \xff\x9b e\tf", "Title",
                                              BoxStyle::Error);
    EXPECT_TRUE(terminal->Shows("a?b?c?d \uFFFD\uFFFD e f\n")) << terminal->Screen();
}

struct SpanishTty : TtyScene {
    SpanishTty() : TtyScene(11274) {}
};

TEST_F(SpanishTty, ShowsItsOwnButtons) {
    terminal->Types({"Sí"});
    EXPECT_EQ(Box(BoxStyle::YesNoCancel), BoxButton::Yes);
    EXPECT_TRUE(terminal->Shows("  1. Sí\n  2. No\n  3. Cancelar\n"));
}

TEST_F(SpanishTty, UnderstandsAYesWithoutItsAccent) {
    TtyPrompter prompter(machine.fakes.loop, terminal, TtyWordsOf(11274));
    terminal->Types({"si"});
    EXPECT_EQ(prompter.YesOrNo("¿Seguir?", false, [] { return false; }).index, 1U);
    EXPECT_EQ(terminal->Screen(), "¿Seguir? (s/n) [n]: si\n");
}

// Texts tell which button to click by its name.
class WordsOf : public testing::TestWithParam<int> {};

TEST_P(WordsOf, ButtonsAreTheOnesThatTheTextsName) {
    const TtyWords& words = TtyWordsOf(GetParam());
    const auto table = MakePosixStringTable(ChosenLocale(GetParam()));
    EXPECT_EQ(table->Load(106), words.ok);
    EXPECT_EQ(table->Load(105), words.cancel);
    const std::string question = table->Load(402).value();
    for (const auto word : {words.yes, words.no, words.cancel}) {
        const std::string named = " " + std::string(word) + " ";
        EXPECT_NE(question.find(named), std::string::npos) << named;
    }
}

INSTANTIATE_TEST_SUITE_P(EveryLanguage, WordsOf,
                         testing::Values(1033, 1046, 2058, 9226, 10250, 11274, 13322, 14346, 15370));

TEST(WordsOfOtherLanguages, AreThoseOfTheirTexts) {
    EXPECT_EQ(TtyWordsOf(3082).yes, TtyWordsOf(2058).yes);
    EXPECT_EQ(TtyWordsOf(2070).yes, TtyWordsOf(1046).yes);
    EXPECT_EQ(TtyWordsOf(1031).yes, "Yes");
}

struct SavePathOnTty : TtyScene {
    std::optional<std::string> Ask() {
        return platform->Parts().dialogs->AskSavePath(
            {"Where?", folder.Path(), "Shortcut|*.lnk", "lnk", "Sales.lnk"});
    }
    TemporaryFolder folder;
};

TEST_F(SavePathOnTty, TakesTheProposedPathAnotherNameOrAnotherFolder) {
    terminal->Types({"", "Other", "/elsewhere/x.lnk"});
    EXPECT_EQ(Ask(), folder.File("Sales.lnk"));
    EXPECT_EQ(Ask(), folder.File("Other.lnk"));
    EXPECT_EQ(Ask(), "/elsewhere/x.lnk");
}

TEST_F(SavePathOnTty, ReplacesAFileOnlyAfterTheUserAgreed) {
    folder.Put("Sales.lnk", "old");
    terminal->Types({"", "", "", "y"});
    EXPECT_EQ(Ask(), folder.File("Sales.lnk"));
    EXPECT_TRUE(terminal->Shows("Sales.lnk already exists. Replace it? (y/n) [n]: "));
}

TEST_F(SavePathOnTty, TakesAFolderForThePlaceOfTheProposedName) {
    terminal->Types({folder.Path().c_str()});
    EXPECT_EQ(Ask(), folder.File("Sales.lnk"));
}

TEST_F(SavePathOnTty, EndsWhenItIsWithdrawn) {
    Signal<> withdrawn;
    terminal->Waits([&] { withdrawn(); });
    EXPECT_EQ(platform->Parts().dialogs->AskSavePath({"Where?", folder.Path(), "", "", "a"}, withdrawn),
              std::nullopt);
}

TEST_F(SavePathOnTty, IsCancelledByTheInterruptKey) {
    terminal->PressesInterrupt();
    EXPECT_EQ(Ask(), std::nullopt);
}

using NewsOnTty = TtyScene;

TEST_F(NewsOnTty, TellsWhatIsWaitedForOnceEach) {
    frmWait wait(platform);
    wait.ShowWait(300);
    wait.ShowWait(300);
    wait.ShowWait(302);
    wait.HideWait();
    EXPECT_EQ(
        terminal->Screen(),
        "Attempting to connect to the Login Server.  Please Wait.\nAttempting to log in.  Please Wait.\n");
}

TEST_F(NewsOnTty, StandOnALineOfTheirOwnAndTheQuestionComesAgain) {
    frmWait wait(platform);
    terminal->Waits([&] { wait.ShowWait(302); });
    terminal->Types({"2"});
    EXPECT_EQ(Box(BoxStyle::YesNo), BoxButton::No);
    EXPECT_TRUE(terminal->Shows("[1]: \nAttempting to log in.  Please Wait.\n\n!  Title\nGo on?\n"))
        << terminal->Screen();
}

}  // namespace
}  // namespace kq
