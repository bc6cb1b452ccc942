// Real windows of forms whose handlers hide, unload and drop them while the window is being drawn.
#include <QLineEdit>
#include <QPointer>
#include <functional>

#include <gtest/gtest.h>

#include "forms/Form.h"
#include "gui/Stage.h"

namespace kq {
namespace {

const FormRow& Row() {
    using enum ControlKind;
    static const FormRow row{.name = "frmTest",
                             .controls = {{.kind = TextBox, .name = "txtOne"},
                                          {.kind = TextBox, .name = "txtTwo"},
                                          {.kind = ListView, .name = "lvItems"}}};
    return row;
}

class WindowOfAForm : public testing::Test {
 protected:
    ~WindowOfAForm() override {
        if (form) form->Unload();
    }
    void UnloadsAndDrops() {
        ++unloaded;
        form->Unload();
        form.reset();
    }
    // The window is there, and then deleted.
    void Goes(const QPointer<QWidget>& window) {
        stage.Await([&] { return !window; }, "the window to go");
    }
    // What is done to the control with the focus hands the focus on, and the handler of the next one unloads.
    void ExpectUnloadedWhen(const std::function<void(Control&)>& done) {
        QPointer<QWidget> window;
        stage.When("frmTest", [&](QWidget& shown) {
            window = &shown;
            stage.Await([&] { return In(shown, "txtOne").hasFocus(); }, "the focus");
            form->At("txtTwo").OnGotFocus([&] { UnloadsAndDrops(); });
            const std::shared_ptr<Form> held = form;
            done(held->At("txtOne"));
            EXPECT_EQ(unloaded, 1);
        });
        const std::shared_ptr<Form> shown = form;
        shown->ShowModal();
        EXPECT_EQ(unloaded, 1);
        Goes(window);
    }

    Stage stage;
    std::shared_ptr<Form> form = Form::Load(stage.Machine(), Row());
    int unloaded = 0;
};

TEST_F(WindowOfAForm, MayBeUnloadedAsSoonAsItGetsTheFocus) {
    form->At("txtOne").OnGotFocus([&] { UnloadsAndDrops(); });
    const std::shared_ptr<Form> shown = form;
    shown->ShowModal();
    EXPECT_EQ(unloaded, 1);
    EXPECT_FALSE(shown->Visible());
    EXPECT_EQ(FindWindow("frmTest"), nullptr);
}

TEST_F(WindowOfAForm, MayBeUnloadedWhenAControlThatIsHiddenHandsItsFocusOn) {
    ExpectUnloadedWhen([](Control& focused) { focused.SetVisible(false); });
}

TEST_F(WindowOfAForm, MayBeUnloadedWhenAControlThatIsDisabledHandsItsFocusOn) {
    ExpectUnloadedWhen([](Control& focused) { focused.SetEnabled(false); });
}

TEST_F(WindowOfAForm, MayBeUnloadedWhileItsUserTypes) {
    QPointer<QWidget> window;
    form->At("txtOne").OnChange([&] { UnloadsAndDrops(); });
    stage.When("frmTest", [&](QWidget& shown) {
        window = &shown;
        In<QLineEdit>(shown, "txtOne").insert("x");
    });
    const std::shared_ptr<Form> shown = form;
    shown->ShowModal();
    EXPECT_EQ(unloaded, 1);
    Goes(window);
}

}  // namespace
}  // namespace kq
