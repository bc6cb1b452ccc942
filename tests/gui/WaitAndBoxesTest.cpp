// Message boxes, windows above others, where to save, and what goes on while a modal window is open.
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QWindow>
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/Listener.h>
#include <kqappsession/QtPlatform.h>

#include "dialogs/frmLogin.h"
#include "dialogs/frmServer.h"
#include "dialogs/frmWait.h"
#include "gui/Scenes.h"
#include "gui/User.h"
#include "platform/Machine.h"
#include "platform/TemporaryFolder.h"

namespace kq {
namespace {

class OnTheScreen : public testing::Test {
 protected:
    BoxButton Box(BoxStyle style, Stage::Act act) {
        stage.When("MessageBox", std::move(act));
        return stage.Machine()->Parts().dialogs->ShowMessageBox("Text <b>&amp;", "Caption", style);
    }
    Stage stage;
    User user{stage};
};

// --- Message boxes

TEST_F(OnTheScreen, BoxShowsItsTextAsItStands) {
    const auto pressed = Box(BoxStyle::Error, [&](QWidget& window) {
        const auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.text(), "Text <b>&amp;");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), "Caption");
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        user.Presses("Escape");
    });
    EXPECT_EQ(pressed, BoxButton::OK);
}

// Buttons from the left to the right, the default one in front.
std::vector<std::string> ButtonsOf(const QMessageBox& box) {
    auto buttons = box.buttons();
    std::ranges::sort(buttons, {}, [](const QAbstractButton* button) { return button->x(); });
    std::vector<std::string> captions{"default " + box.defaultButton()->text().remove('&').toStdString()};
    for (QAbstractButton* const button : buttons)
        captions.push_back(button->text().remove('&').toStdString());
    return captions;
}

TEST_F(OnTheScreen, BoxHasTheIconAndTheButtonsOfItsStyle) {
    using Captions = std::vector<std::string>;
    struct Look {
        BoxStyle style;
        QMessageBox::Icon icon;
        Captions buttons;
    };
    for (const auto& look :
         {Look{BoxStyle::Error, QMessageBox::Critical, {"default OK", "OK"}},
          Look{BoxStyle::Warning, QMessageBox::Warning, {"default OK", "OK"}},
          Look{BoxStyle::Information, QMessageBox::Information, {"default OK", "OK"}},
          Look{BoxStyle::YesNo, QMessageBox::Warning, {"default Yes", "Yes", "No"}},
          Look{BoxStyle::YesNoCancel, QMessageBox::Warning, {"default Yes", "Yes", "No", "Cancel"}}}) {
        Box(look.style, [&](QWidget& window) {
            const auto& box = dynamic_cast<QMessageBox&>(window);
            EXPECT_EQ(box.icon(), look.icon);
            EXPECT_EQ(ButtonsOf(box), look.buttons);
            EXPECT_FALSE(box.iconPixmap().isNull());
            user.Presses("Return");
        });
    }
}

TEST_F(OnTheScreen, BoxTakesEnterForItsFirstButton) {
    const auto enter = [&](QWidget&) { user.Presses("Return"); };
    EXPECT_EQ(Box(BoxStyle::Information, enter), BoxButton::OK);
    EXPECT_EQ(Box(BoxStyle::YesNo, enter), BoxButton::Yes);
    EXPECT_EQ(Box(BoxStyle::YesNoCancel, enter), BoxButton::Yes);
}

TEST_F(OnTheScreen, BoxTakesItsCloseBoxForTheMildestAnswer) {
    const auto close = [&](QWidget& box) { user.ClosesByTheSystem(box); };
    EXPECT_EQ(Box(BoxStyle::Warning, close), BoxButton::OK);
    EXPECT_EQ(Box(BoxStyle::YesNo, close), BoxButton::No);
    EXPECT_EQ(Box(BoxStyle::YesNoCancel, close), BoxButton::Cancel);
}

TEST_F(OnTheScreen, BoxTellsEachButton) {
    for (const auto& [caption, button] :
         {std::pair{"Yes", BoxButton::Yes}, {"No", BoxButton::No}, {"Cancel", BoxButton::Cancel}}) {
        EXPECT_EQ(Box(BoxStyle::YesNoCancel, [&](QWidget& box) { user.Answers(box, caption); }), button);
    }
}

TEST(BoxesInPortuguese, HaveTheirButtonsInTheUsersLanguage) {
    Stage stage(1046);
    User user(stage);
    stage.When("MessageBox", [&](QWidget& box) { user.Answers(box, "Não"); });
    EXPECT_EQ(stage.Machine()->Parts().dialogs->ShowMessageBox("?", "?", BoxStyle::YesNo), BoxButton::No);
}

TEST_F(OnTheScreen, BoxEndsWithTheProgram) {
    EXPECT_EQ(Box(BoxStyle::YesNo, [&](QWidget&) { stage.Loop().Quit(); }), BoxButton::No);
}

TEST_F(OnTheScreen, BoxClosesWhenItIsWithdrawn) {
    Signal<> withdrawn;
    stage.When("MessageBox", [&](QWidget&) { withdrawn(); });
    EXPECT_EQ(stage.Machine()->Parts().dialogs->ShowMessageBox("?", "?", BoxStyle::YesNoCancel, withdrawn),
              BoxButton::Cancel);
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
}

// --- The wait window

class WaitWindow : public OnTheScreen {
 protected:
    void Shows(std::int32_t id) {
        wait.ShowWait(id);
        stage.Await([] { return FindWindow("frmWait") != nullptr; }, "the wait window");
    }
    // The user gives up in this way, and the window is gone.
    void ExpectClosedBy(const std::function<void(QWidget&)>& act) {
        int closed = 0;
        wait.Closed.Connect(owner, [&] { ++closed; });
        Shows(300);
        act(*FindWindow("frmWait"));
        stage.Await([&] { return closed == 1; }, "the end of the wait");
        EXPECT_EQ(FindWindow("frmWait"), nullptr);
    }
    frmWait wait{stage.Machine()};
    Owner owner;
};

TEST_F(WaitWindow, IsClosedByEscape) {
    ExpectClosedBy([&](QWidget& window) {
        stage.Await([&] { return window.isActiveWindow(); }, "the wait window to be active");
        user.Presses("Escape");
    });
}

TEST_F(WaitWindow, IsClosedByItsCloseBox) {
    ExpectClosedBy([&](QWidget& window) { user.ClosesByTheSystem(window); });
}

TEST_F(WaitWindow, IsClosedByEscapeAlsoOverAModalWindowOfTheProgram) {
    QDialog program;
    program.setModal(true);
    program.setGeometry(300, 200, 500, 300);
    program.show();
    stage.Await([&] { return program.isActiveWindow(); }, "the program's window");
    ExpectClosedBy([&](QWidget& window) {
        stage.Await([&] { return window.isActiveWindow(); }, "the wait window to be active");
        user.Presses("Escape");
    });
    stage.Await([&] { return program.isActiveWindow(); }, "the program's window again");
}

TEST_F(WaitWindow, LeavesTheFocusWhereTheUserHasPutItSince) {
    QWidget program;
    program.setGeometry(0, 0, 300, 100);
    program.show();
    Shows(300);
    stage.Await([] { return FindWindow("frmWait")->isActiveWindow(); }, "the wait window to be active");
    user.ComesBackTo(program);
    stage.Await([&] { return program.isActiveWindow(); }, "the program's window");
    wait.ShowWait(302);
    stage.Loop().ProcessPending();
    EXPECT_TRUE(program.isActiveWindow());
}

TEST_F(WaitWindow, StaysOnTopWhileAModalQuestionIsAnswered) {
    Shows(310);
    QWidget& window = *FindWindow("frmWait");
    EXPECT_EQ(Box(BoxStyle::YesNo,
                  [&](QWidget& box) {
                      window.move(box.geometry().center() - window.rect().center());
                      const auto on_top = [&] {
                          const QPoint middle = window.geometry().center();
                          return box.geometry().contains(middle) &&
                                 QApplication::topLevelAt(middle) == &window;
                      };
                      stage.Await(on_top, "the window on top");
                      EXPECT_TRUE(box.isActiveWindow());
                      user.Presses("Return");
                  }),
              BoxButton::Yes);
    EXPECT_TRUE(window.isVisible());
}

TEST_F(WaitWindow, AsksTheSystemToStayOnTopAndHoldsNothingUp) {
    Shows(310);
    const QWidget& window = *FindWindow("frmWait");
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(window.windowModality(), Qt::NonModal);
}

TEST_F(WaitWindow, LiesOnNoQuestion) {
    Shows(310);
    Box(BoxStyle::YesNo, [&](QWidget& box) {
        EXPECT_FALSE(box.frameGeometry().intersects(FindWindow("frmWait")->frameGeometry()));
        user.Presses("Return");
    });
}

TEST_F(WaitWindow, ChangesItsTextsWhileItIsUp) {
    Shows(300);
    Shows(302);
    QWidget& window = *FindWindow("frmWait");
    EXPECT_EQ(window.windowTitle(), "Logging In...");
    EXPECT_EQ(In<QLabel>(window, "lblPleaseWait").text(), "Attempting to log in.  Please Wait.");
}

TEST_F(WaitWindow, ComesAgainAfterTheUserHasClosedIt) {
    Shows(300);
    user.ClosesByTheSystem(*FindWindow("frmWait"));
    stage.Await([] { return !FindWindow("frmWait"); }, "no window");
    Shows(302);
    wait.HideWait();
    EXPECT_EQ(FindWindow("frmWait"), nullptr);
}

TEST_F(WaitWindow, TakesNoFocusWhileADialogIsOpen) {
    LoginAnswer answer{.login_id = "ann"};
    stage.When("frmLogin", [&](QWidget& window) {
        user.SeesFocusOn(window, "txtPassword");
        Shows(300);
        user.TypesHere(window, "txtPassword", "bob", "bob");
        user.Presses("Escape");
    });
    frmLogin(stage.Machine()).Login(answer, false, nullptr);
}

// --- Where to save

class SaveQuestionOnScreen : public OnTheScreen {
 protected:
    std::optional<std::string> Ask() {
        return stage.Machine()->Parts().dialogs->AskSavePath(
            {"Where?", folder_.Path(), "Shortcut|*.lnk", "lnk", "Sales.lnk"});
    }
    // The next dialog gets a name and Enter.
    void Types(const std::string& name) {
        stage.When("SaveDialog", [this, name](QWidget& window) {
            user.SeesFocusOn(window, "fileNameEdit");
            user.Types(window, "fileNameEdit", name);
            user.Presses("Return");
        });
    }
    TemporaryFolder folder_;
};

TEST_F(SaveQuestionOnScreen, GivesTheNameAnExtension) {
    Types("Other");
    EXPECT_EQ(Ask(), folder_.File("Other.lnk"));
}

TEST_F(SaveQuestionOnScreen, ReplacesAFileOnlyAfterTheUserAgreed) {
    folder_.Put("Sales.lnk", "old");
    Types("Sales");
    stage.When("MessageBox", [&](QWidget& box) { user.Answers(box, "No"); });
    Types("Sales");
    stage.When("MessageBox", [&](QWidget& box) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(),
                  "Sales.lnk already exists.\nDo you want to replace it?");
        user.Answers(box, "Yes");
    });
    EXPECT_EQ(Ask(), folder_.File("Sales.lnk"));
}

TEST(SaveQuestionInPortuguese, HasItsTextsInTheUsersLanguage) {
    Stage stage(1046);
    User user(stage);
    stage.When("SaveDialog", [&](QWidget& window) {
        const auto& dialog = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(dialog.labelText(QFileDialog::LookIn), "Procurar em:");
        EXPECT_EQ(dialog.labelText(QFileDialog::FileName), "&Nome do arquivo:");
        EXPECT_EQ(dialog.labelText(QFileDialog::FileType), "Arquivos do tipo:");
        EXPECT_EQ(dialog.labelText(QFileDialog::Accept), "&Salvar");
        EXPECT_EQ(dialog.labelText(QFileDialog::Reject), "Cancelar");
        user.Presses("Escape");
    });
    const TemporaryFolder folder;
    stage.Machine()->Parts().dialogs->AskSavePath(
        {"Onde?", folder.Path(), "Atalho|*.lnk", "lnk", "Sales.lnk"});
}

// --- While a modal window is open

TEST_F(OnTheScreen, ASocketIsServedWhileAnyWindowIsOpen) {
    const auto listener = Listener::Create(stage.Machine());
    Owner owner;
    std::string heard;
    listener->Receive.Connect(owner, [&](const auto&, const Block& block) { heard += block.data; });
    listener->Listen(0, "127.0.0.1");
    const auto client = APClient::Create(stage.Machine());
    client->Connect("127.0.0.1", listener->Port(), "", 10'000);
    std::size_t visited = 0;
    for (const auto& scene : Scenes()) {
        scene.show(stage, [&](QWidget&) {
            heard.clear();
            client->SendBytes(scene.name);
            stage.Await([&] { return heard == scene.name; }, scene.name + " at the other side");
            ++visited;
        });
    }
    EXPECT_EQ(visited, Scenes().size());
}

TEST_F(OnTheScreen, AModalWindowHasTheIconAndTheHostsWindowAsItsOwner) {
    QWidget host;
    host.setObjectName("host");
    host.show();
    QPixmap picture(16, 16);
    picture.fill(Qt::red);
    const TemporaryFolder folder;
    const std::string path = folder.File("icon.png");
    picture.save(QString::fromStdString(path));
    host.activateWindow();
    stage.Await([&] { return host.isActiveWindow(); }, "the host's window");
    stage.When("frmServer", [&](QWidget& window) {
        EXPECT_EQ(window.windowHandle()->transientParent(), host.windowHandle());
        EXPECT_EQ(window.windowIcon().pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::red));
        EXPECT_EQ(window.windowModality(), Qt::ApplicationModal);
        user.Presses("Escape");
    });
    ServerSettings server{"", 1, 1000};
    frmServer(stage.Machine()).GetServerInfo(server, MakeQtIcon(path));
    EXPECT_TRUE(host.isVisible());
}

TEST(QtIcons, AreNothingWhereThereIsNoPicture) {
    EXPECT_EQ(MakeQtIcon("/nowhere/icon.png"), nullptr);
}

}  // namespace
}  // namespace kq
