// Real windows of forms whose handlers hide, unload and drop them while the window is being drawn.
#include <QLineEdit>
#include <QPointer>

#include <gtest/gtest.h>

#include "gui/Stage.h"
#include "platform/Form.h"

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
    QPointer<QWidget> window;
    stage.When("frmTest", [&](QWidget& shown) {
        window = &shown;
        stage.Await([&] { return In(shown, "txtOne").hasFocus(); }, "the focus");
        form->At("txtTwo").OnGotFocus([&] { UnloadsAndDrops(); });
        const std::shared_ptr<Form> held = form;
        held->At("txtOne").SetVisible(false);
        EXPECT_EQ(unloaded, 1);
    });
    const std::shared_ptr<Form> shown = form;
    shown->ShowModal();
    EXPECT_EQ(unloaded, 1);
    Goes(window);
}

TEST_F(WindowOfAForm, MayBeUnloadedWhenAControlThatIsDisabledHandsItsFocusOn) {
    QPointer<QWidget> window;
    stage.When("frmTest", [&](QWidget& shown) {
        window = &shown;
        stage.Await([&] { return In(shown, "txtOne").hasFocus(); }, "the focus");
        form->At("txtTwo").OnGotFocus([&] { UnloadsAndDrops(); });
        const std::shared_ptr<Form> held = form;
        held->At("txtOne").SetEnabled(false);
        EXPECT_EQ(unloaded, 1);
    });
    const std::shared_ptr<Form> shown = form;
    shown->ShowModal();
    Goes(window);
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
