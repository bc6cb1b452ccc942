#include "gui/User.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>

namespace kq {

namespace {

// The toolkit's places are as far apart as the user has set; the display's are pixels.
QPoint OnDisplay(const QWidget& widget, QPoint place) {
    return widget.mapToGlobal(place) * widget.devicePixelRatio();
}

// A check box may be wider than its text, and hears clicks on what can be seen only.
QPoint MiddleOf(const QWidget& widget) {
    const bool ticks = qobject_cast<const QCheckBox*>(&widget) != nullptr;
    const QPoint tick(widget.height() / 2, widget.height() / 2);
    return OnDisplay(widget, ticks ? tick : widget.rect().center());
}

}  // namespace

// What has just been hidden may be on the display still, and would take the click.
void User::AwaitOnDisplay(const QWidget& widget) {
    const auto reachable = [&] {
        return QApplication::topLevelAt(widget.mapToGlobal(widget.rect().center())) == widget.window();
    };
    stage_.Await(reachable, widget.objectName().toStdString() + " under the mouse");
}

void User::Clicks(QWidget& window, const std::string& control) {
    const QWidget& widget = In(window, control);
    AwaitOnDisplay(widget);
    const QPoint place = MiddleOf(widget);
    hand_.Click(place.x(), place.y());
}

void User::Answers(QWidget& box, const std::string& caption) {
    for (QAbstractButton* const button : dynamic_cast<QMessageBox&>(box).buttons()) {
        if (button->text().remove('&').toStdString() != caption) continue;
        AwaitOnDisplay(*button);
        const QPoint place = MiddleOf(*button);
        hand_.Click(place.x(), place.y());
        return;
    }
    throw std::runtime_error("The box has no button " + caption);
}

void User::Types(QWidget& window, const std::string& box, const std::string& text) {
    if (!In(window, box).hasFocus()) Clicks(window, box);
    SeesFocusOn(window, box);
    hand_.Press("a", "Control_L");
    TypesHere(window, box, text, text);
}

void User::TypesHere(QWidget& window, const std::string& box, const std::string& text,
                     const std::string& expected) {
    const auto& edit = In<QLineEdit>(window, box);
    hand_.Type(text);
    stage_.Await([&] { return edit.text().toStdString() == expected; }, box + " to hold " + expected);
}

void User::ClicksItem(QWidget& window, const std::string& list, int row, bool twice) {
    const auto& widget = In<QListWidget>(window, list);
    AwaitOnDisplay(widget);
    const QPoint place = OnDisplay(*widget.viewport(), widget.visualItemRect(widget.item(row)).center());
    if (twice)
        hand_.DoubleClick(place.x(), place.y());
    else
        hand_.Click(place.x(), place.y());
}

void User::SeesFocusOn(QWidget& window, const std::string& control) {
    const QWidget& widget = In(window, control);
    stage_.Await([&] { return widget.hasFocus(); }, "the focus on " + control);
}

}  // namespace kq
