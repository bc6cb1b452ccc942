// Forms and controls by themselves: what an event does, what a view is told.
#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"

namespace kq {
namespace {

const FormRow& Row() {
    using enum ControlKind;
    static const FormRow row{.name = "frmTest",
                             .default_button = "cmdOK",
                             .cancel_button = "cmdCancel",
                             .controls = {
                                 {.kind = Label, .name = "lblText"},
                                 {.kind = TextBox, .name = "txtOne"},
                                 {.kind = MaskedBox, .name = "txtSecret"},
                                 {.kind = CheckBox, .name = "chkMany"},
                                 {.kind = ListView, .name = "lvItems"},
                                 {.kind = Frame, .name = "Picture1"},
                                 {.kind = TextBox, .name = "txtInside", .frame = "Picture1"},
                                 {.kind = Button, .name = "cmdOK", .place = Place::ButtonRow},
                                 {.kind = Button, .name = "cmdCancel", .place = Place::ButtonRow},
                                 {.kind = Timer, .name = "Timer1", .interval = 100},
                             }};
    return row;
}

struct FormAtWork : testing::Test {
    ~FormAtWork() override { form->Unload(); }
    // Shows the form modally; the user does as told.
    void Shows(FakeDialogHost::Script script) {
        host.Expect("frmTest", [&](FakeUser& user) {
            script(user);
            if (user.IsOpen()) user.Closes();
        });
        form->ShowModal();
    }
    void Notes(std::string_view control, void (Control::*on)(Control::Handler), const std::string& word) {
        (form->At(control).*on)([this, word] { heard += word + " "; });
    }

    FakePlatform machine;
    FakeDialogHost& host = *machine.dialogs;
    std::shared_ptr<Form> form = Form::Load(machine.platform, Row());
    std::string heard;
};

TEST_F(FormAtWork, ShowsAndHidesItsWindow) {
    EXPECT_FALSE(form->Visible());
    Shows([&](FakeUser&) { EXPECT_TRUE(form->Visible()); });
    EXPECT_FALSE(form->Visible());
}

TEST_F(FormAtWork, KeepsItsStateWhileItIsHidden) {
    Shows([](FakeUser& user) { user.Types("txtOne", "abc"); });
    Shows([](FakeUser& user) { EXPECT_EQ(user.Sees("txtOne"), "abc"); });
}

TEST_F(FormAtWork, GivesTheFocusToTheFirstControlThatTakesIt) {
    form->At("txtOne").SetEnabled(false);
    Shows([](FakeUser& user) { EXPECT_EQ(user.Focus(), "txtSecret"); });
}

TEST_F(FormAtWork, GivesTheFocusOnceForEachShowing) {
    Shows([&](FakeUser& user) {
        user.GoesTo("cmdOK");
        form->Activated();
        EXPECT_EQ(user.Focus(), "cmdOK");
    });
    Shows([](FakeUser& user) { EXPECT_EQ(user.Focus(), "txtOne"); });
}

TEST_F(FormAtWork, MovesTheFocusWhenItIsTold) {
    Notes("cmdOK", &Control::OnGotFocus, "focus");
    Shows([&](FakeUser& user) {
        form->SetFocus(form->At("cmdOK"));
        EXPECT_EQ(user.Focus(), "cmdOK");
    });
    EXPECT_EQ(heard, "focus ");
}

TEST_F(FormAtWork, BeginsWhereItWasToldBeforeItWasShown) {
    form->SetFocus(form->At("cmdOK"));
    Shows([](FakeUser& user) { EXPECT_EQ(user.Focus(), "cmdOK"); });
}

TEST_F(FormAtWork, KnowsWhereTheFocusIs) {
    Shows([&](FakeUser& user) {
        user.GoesTo("cmdOK");
        EXPECT_EQ(form->Focused(), form->Find("cmdOK"));
    });
    EXPECT_EQ(form->Focused(), nullptr);
}

TEST_F(FormAtWork, HasItsQuestionsWithdrawnByEachHide) {
    Owner owner;
    int withdrawn = 0;
    form->Hidden.Connect(owner, [&] { ++withdrawn; });
    form->Hide();  // not shown yet
    EXPECT_EQ(withdrawn, 1);
    Shows([&](FakeUser& user) {
        user.Closes();
        EXPECT_EQ(withdrawn, 2);
    });
}

TEST_F(FormAtWork, TellsWhenItsUserClosesIt) {
    int closed = 0;
    form->OnClosed([&] { ++closed; });
    Shows([&](FakeUser&) { form->Hide(); });
    EXPECT_EQ(closed, 0);
    Shows([](FakeUser& user) { user.Closes(); });
    EXPECT_EQ(closed, 1);
}

TEST_F(FormAtWork, RaisesTheEventsOfItsUser) {
    Notes("txtOne", &Control::OnChange, "change");
    Notes("txtSecret", &Control::OnChange, "secret");
    Notes("chkMany", &Control::OnClick, "tick");
    Notes("lvItems", &Control::OnSelect, "select");
    Notes("cmdOK", &Control::OnClick, "ok");
    form->At("lvItems").SetItems({"a", "b"});
    Shows([](FakeUser& user) {
        user.Types("txtOne", "x");
        user.Types("txtSecret", "y");
        user.Ticks("chkMany");
        user.Selects("lvItems", "b");
        user.Clicks("cmdOK");
    });
    EXPECT_EQ(heard, "change secret tick select ok ");
}

TEST_F(FormAtWork, IgnoresEventsOfControlsThatCannotBeUsed) {
    Notes("cmdOK", &Control::OnClick, "ok");
    Notes("txtOne", &Control::OnChange, "change");
    Shows([&](FakeUser&) {
        form->At("cmdOK").SetEnabled(false);
        form->At("txtOne").SetVisible(false);
        form->Click(form->At("cmdOK"));
        form->EnterPressed();
        form->Type(form->At("txtOne"), "x", {1, 0});
    });
    EXPECT_EQ(heard, "");
    EXPECT_EQ(form->At("txtOne").Text(), "");
}

TEST_F(FormAtWork, IgnoresEventsWhileItIsHidden) {
    Notes("cmdOK", &Control::OnClick, "ok");
    form->Click(form->At("cmdOK"));
    EXPECT_EQ(heard, "");
}

TEST_F(FormAtWork, RaisesChangeForATextThatIsSet) {
    Notes("txtOne", &Control::OnChange, "change");
    form->At("txtOne").SetText("x");
    form->At("txtOne").SetText("x");
    EXPECT_EQ(heard, "change ");
}

TEST_F(FormAtWork, PutsTheCaretAtTheStartOfATextThatIsSet) {
    form->At("txtOne").SetText("abc");
    form->At("txtOne").SelectAll();
    form->At("txtOne").SetText("abcd");
    EXPECT_EQ(form->At("txtOne").Selection(), Selection{});
}

TEST_F(FormAtWork, CountsCharactersNotBytes) {
    form->At("txtOne").SetText("a\u00f1\U0001F600");
    form->At("txtOne").SelectAll();
    EXPECT_EQ(form->At("txtOne").Selection(), (Selection{0, 3}));
}

TEST_F(FormAtWork, CutsASelectionToTheText) {
    form->At("txtOne").SetText("abc");
    form->At("txtOne").SetSelection({2, 9});
    EXPECT_EQ(form->At("txtOne").Selection(), (Selection{2, 1}));
    form->At("txtOne").SetSelection({7, 1});
    EXPECT_EQ(form->At("txtOne").Selection(), (Selection{3, 0}));
}

TEST_F(FormAtWork, ForgetsTheSelectedItemWithTheItems) {
    Control& list = form->At("lvItems");
    list.SetItems({"a", "b"});
    list.SelectItem(1);
    list.SetItems({"c", "d"});
    EXPECT_EQ(list.SelectedItem(), Control::kNoItem);
    list.SelectItem(2);
    EXPECT_EQ(list.SelectedItem(), Control::kNoItem);
}

TEST_F(FormAtWork, ClicksTheDefaultButtonForAnItemThatIsActivated) {
    Notes("cmdOK", &Control::OnClick, "ok");
    form->At("lvItems").SetItems({"a"});
    Shows([](FakeUser& user) { user.DoubleClicks("lvItems", "a"); });
    EXPECT_EQ(heard, "ok ");
}

TEST_F(FormAtWork, PrefersAnItemsOwnHandler) {
    Notes("cmdOK", &Control::OnClick, "ok");
    Notes("lvItems", &Control::OnActivateItem, "item");
    form->At("lvItems").SetItems({"a"});
    Shows([](FakeUser& user) { user.DoubleClicks("lvItems", "a"); });
    EXPECT_EQ(heard, "item ");
}

TEST_F(FormAtWork, CutsOffTheFrameWhereItEnds) {
    form->SetHeight({FormHeight::Rule::EndsAt, 0, "Picture1"});
    Shows([](FakeUser& user) {
        EXPECT_FALSE(user.CanSee("txtInside"));
        EXPECT_TRUE(user.CanSee("txtOne"));
    });
}

TEST_F(FormAtWork, HidesWhatIsInAHiddenFrame) {
    form->At("Picture1").SetVisible(false);
    Shows([](FakeUser& user) { EXPECT_FALSE(user.CanSee("txtInside")); });
}

TEST_F(FormAtWork, HasNoControlOfAnotherName) {
    EXPECT_EQ(form->Find("txtTwo"), nullptr);
    EXPECT_EQ(ErrorOf([&] { form->At("txtTwo"); }).Number(), NumberOf(RuntimeError::InvalidProcedureCall));
}

// --- Errors and lives

TEST_F(FormAtWork, EndsWithTheErrorOfAHandler) {
    form->At("cmdOK").OnClick([] { Raise(RuntimeError::Overflow); });
    host.Expect("frmTest", [](FakeUser& user) {
        user.Clicks("cmdOK");
        EXPECT_FALSE(user.IsOpen());
    });
    EXPECT_EQ(ErrorOf([&] { form->ShowModal(); }).Number(), NumberOf(RuntimeError::Overflow));
}

TEST_F(FormAtWork, EndsWithTheErrorOfAHandlerThatHidItFirst) {
    form->At("cmdOK").OnClick([&] {
        form->Hide();
        Raise(RuntimeError::Overflow);
    });
    host.Expect("frmTest", [](FakeUser& user) { user.Clicks("cmdOK"); });
    EXPECT_EQ(ErrorOf([&] { form->ShowModal(); }).Number(), NumberOf(RuntimeError::Overflow));
}

TEST_F(FormAtWork, CanBeShownAgainAfterAnError) {
    form->At("cmdOK").OnClick([] { Raise(RuntimeError::Overflow); });
    host.Expect("frmTest", [](FakeUser& user) { user.Clicks("cmdOK"); });
    ErrorOf([&] { form->ShowModal(); });
    Shows([](FakeUser&) {});
}

TEST_F(FormAtWork, ReportsAnErrorOfAModelessFormAsStray) {
    int stray = 0;
    const auto before = SetStrayExceptionHandler([&](std::exception_ptr) { ++stray; });
    form->At("cmdOK").OnClick([] { Raise(RuntimeError::Overflow); });
    form->ShowTopmost();
    host.Window("frmTest").Clicks("cmdOK");
    SetStrayExceptionHandler(before);
    EXPECT_EQ(stray, 1);
    EXPECT_TRUE(form->Visible());
}

TEST_F(FormAtWork, OutlivesAHandlerThatUnloadsItAndLetsItGo) {
    host.Expect("frmTest", [](FakeUser& user) {
        user.Clicks("cmdOK");
        EXPECT_FALSE(user.IsOpen());
    });
    std::shared_ptr<Form> held = Form::Load(machine.platform, Row());
    Form& other = *held;
    other.At("cmdOK").OnClick([&] {
        other.Unload();
        held.reset();
    });
    held->ShowModal();
    EXPECT_EQ(host.OpenWindows(), 0U);
}

TEST_F(FormAtWork, CannotBeShownOnceItIsUnloaded) {
    form->Unload();
    form->ShowModal();
    form->ShowTopmost();
    EXPECT_TRUE(host.Shown().empty());
}

TEST_F(FormAtWork, HidesTheFormThatItOwns) {
    const auto owned = Form::Load(machine.platform, Row());
    host.Expect("frmTest", [&](FakeUser&) { form->Hide(); });
    form->At("cmdOK").OnClick([&] { owned->ShowModal(form); });
    host.Expect("frmTest", [&](FakeUser&) { form->Hide(); });
    form->ShowModal();
    EXPECT_FALSE(owned->Visible());
    owned->Unload();
}

TEST(UnscriptedWindow, FailsTheTest) {
    FakePlatform machine;
    const auto form = Form::Load(machine.platform, Row());
    EXPECT_THROW(form->ShowModal(), FakeFailure);
    EXPECT_EQ(machine.dialogs->TakeUnexpected(), 1U);
    form->Unload();
}

TEST(UnscriptedQuestionForAPath, FailsTheTest) {
    FakePlatform machine;
    EXPECT_THROW(machine.dialogs->AskSavePath({}), FakeFailure);
    EXPECT_EQ(machine.dialogs->TakeUnexpected(), 1U);
}

TEST(WindowThatIsLeftOpen, FailsTheTest) {
    FakePlatform machine;
    const auto form = Form::Load(machine.platform, Row());
    form->At("Timer1").SetTimerEnabled(true);
    machine.dialogs->Expect("frmTest", {});
    EXPECT_THROW(form->ShowModal(), FakeFailure);
    form->Unload();
}

// --- Timers

struct FormTimer : FormAtWork {
    FormTimer() {
        timer.OnTick([this] { heard += "tick "; });
    }
    void Passes(int milliseconds) { machine.loop->Advance(Milliseconds(milliseconds)); }
    Control& timer = form->At("Timer1");
};

TEST_F(FormTimer, TicksAtItsIntervalWhileItIsEnabled) {
    timer.SetTimerEnabled(true);
    Passes(99);
    EXPECT_EQ(heard, "");
    Passes(201);
    EXPECT_EQ(heard, "tick tick tick ");
    timer.SetTimerEnabled(false);
    Passes(1000);
    EXPECT_EQ(heard, "tick tick tick ");
}

TEST_F(FormTimer, StartsItsIntervalAnewWhenItIsDisabledAndEnabled) {
    timer.SetTimerEnabled(true);
    Passes(99);
    timer.SetTimerEnabled(false);
    timer.SetTimerEnabled(true);
    Passes(99);
    EXPECT_EQ(heard, "");
    Passes(1);
    EXPECT_EQ(heard, "tick ");
}

TEST_F(FormTimer, RunsOnWhenItIsEnabledTwice) {
    timer.SetTimerEnabled(true);
    Passes(99);
    timer.SetTimerEnabled(true);
    Passes(1);
    EXPECT_EQ(heard, "tick ");
}

TEST_F(FormTimer, MayDisableItselfInItsTick) {
    timer.OnTick([this] {
        heard += "tick ";
        timer.SetTimerEnabled(false);
    });
    timer.SetTimerEnabled(true);
    Passes(1000);
    EXPECT_EQ(heard, "tick ");
}

TEST_F(FormTimer, KeepsTheIntervalThatItsTickStarted) {
    timer.OnTick([this] {
        heard += "tick ";
        timer.SetTimerEnabled(false);
        timer.SetTimerEnabled(true);
        if (heard == "tick ") Passes(60);
    });
    timer.SetTimerEnabled(true);
    Passes(100);
    EXPECT_EQ(heard, "tick ");
    Passes(40);
    EXPECT_EQ(heard, "tick tick ");
}

TEST_F(FormTimer, EndsWithTheForm) {
    timer.SetTimerEnabled(true);
    form->Unload();
    Passes(1000);
    EXPECT_EQ(heard, "");
    EXPECT_EQ(machine.loop->TimerCount(), 0U);
}

TEST_F(FormTimer, LeavesNothingBehindWhenTheFormIsDropped) {
    auto other = Form::Load(machine.platform, Row());
    other->At("Timer1").SetTimerEnabled(true);
    other.reset();
    EXPECT_EQ(machine.loop->TimerCount(), 0U);
}

}  // namespace
}  // namespace kq
