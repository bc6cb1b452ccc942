// Events are passed to the form immediately. While one is being handled the form may release the window, so
// the window is deleted only after the outermost event has returned.
#include "forms/qt/QtFormWindow.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QWindow>
#include <algorithm>
#include <cmath>

#include "forms/AccessKeys.h"
#include "forms/qt/QtIcon.h"
#include "forms/qt/QtScreen.h"
#include "forms/qt/QtText.h"

namespace kq {
namespace {

constexpr double kTwipsPerInch = 1440;

// What was typed is left nowhere but in the box and in the secret.
Secret TypedIn(const QLineEdit& box) {
    QByteArray typed = box.text().toUtf8();
    Secret secret(std::string_view(typed.constData(), static_cast<std::size_t>(typed.size())));
    WipeMemory(typed.data(), static_cast<std::size_t>(typed.size()));
    return secret;
}

// The box is one line: of a pasted text only the first line is kept, and what was behind the caret stays.
void KeepFirstLine(QLineEdit& box) {
    const QString text = box.text();
    const auto breaks = [](QChar character) { return character == '\r' || character == '\n'; };
    const auto end = std::ranges::find_if(text, breaks) - text.begin();
    if (end == text.size()) return;
    QString kept;
    kept.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (i < end || (i >= box.cursorPosition() && !breaks(text[i]))) kept += text[i];
    }
    box.setText(kept);
    box.setCursorPosition(static_cast<int>(end));
}

int SelectedRow(const QListWidget& list) {
    const auto selected = list.selectedItems();
    return selected.isEmpty() ? -1 : list.row(selected.first());
}

}  // namespace

QtFormWindow::QtFormWindow(Form& form, std::shared_ptr<QtScreen> screen)
    : form_(form.weak_from_this()), screen_(std::move(screen)) {
    setObjectName(ToQt(form.Name()));
    // Closing the last of a program's dialogs is no reason for the program to end.
    setAttribute(Qt::WA_QuitOnClose, false);
    for (const auto& control : form.Controls()) {
        const Control* const frame = form.Find(control.Row().frame);
        QWidget* const widget = MakeWidget(control, frame ? *widgets_.at(frame) : *this);
        if (!widget) continue;
        widget->setObjectName(ToQt(control.Name()));
        widgets_.emplace(&control, widget);
    }
    for (const auto& [control, widget] : widgets_) {
        const Control* const buddy = form.Find(control->Row().buddy);
        if (auto* const label = qobject_cast<QLabel*>(widget); label && buddy)
            label->setBuddy(widgets_.at(buddy));
        if (auto* const button = qobject_cast<QPushButton*>(widget)) {
            button->setAutoDefault(form.DefaultButton() != nullptr);
            button->setDefault(control == form.DefaultButton());
        }
    }
    layout_.emplace(*this, form, widgets_);
    for (const auto& [control, widget] : widgets_) {
        using enum ControlChange;
        for (const auto change : {Text, Enabled, Checked, Items, SelectedItem, Progress})
            ShowState(*control, *widget, change);
        Connect(*control, *widget);
    }
    Draw(FormChange::Icon);
    DrawTexts(form);
    DrawDrawn(form);
}

QtFormWindow::~QtFormWindow() {
    screen_->Remove(*this);
}

void QtFormWindow::LetGo() {
    hide();
    let_go_ = true;
    form_.reset();
    for (const auto& [control, widget] : widgets_) {
        if (auto* const box = qobject_cast<QLineEdit*>(widget)) box->clear();
    }
    widgets_.clear();
    if (reporting_ == 0) deleteLater();
}

// --- What the user does

void QtFormWindow::Report(const std::function<void(Form&)>& event) {
    const auto form = form_.lock();
    if (!form) return;
    ++reporting_;
    event(*form);
    --reporting_;
    if (let_go_ && reporting_ == 0) deleteLater();
}

void QtFormWindow::Connect(const Control& control, QWidget& widget) {
    widget.installEventFilter(this);
    const Control* const which = &control;
    if (auto* const box = qobject_cast<QLineEdit*>(&widget)) {
        connect(box, &QLineEdit::textEdited, this, [this, which] { ReportTyping(*which); });
    } else if (auto* const check_box = qobject_cast<QCheckBox*>(&widget)) {
        connect(check_box, &QCheckBox::clicked, this,
                [this, which](bool on) { Report([&](Form& form) { form.Toggle(*which, on); }); });
    } else if (auto* const button = qobject_cast<QPushButton*>(&widget)) {
        connect(button, &QPushButton::clicked, this,
                [this, which] { Report([&](Form& form) { form.Click(*which); }); });
    } else if (auto* const list = qobject_cast<QListWidget*>(&widget)) {
        connect(list, &QListWidget::itemSelectionChanged, this, [this, which, list] {
            Report([&](Form& form) { form.Select(*which, SelectedRow(*list)); });
        });
        connect(list, &QListWidget::itemDoubleClicked, this, [this, which, list](QListWidgetItem* item) {
            Report([&](Form& form) { form.ActivateItem(*which, list->row(item)); });
        });
    }
}

void QtFormWindow::ReportTyping(const Control& control) {
    auto* const box = qobject_cast<QLineEdit*>(widgets_.at(&control));
    KeepFirstLine(*box);
    Report([&](Form& form) {
        if (control.Kind() == ControlKind::MaskedBox)
            form.Type(control, TypedIn(*box));
        else
            form.Type(control, FromQt(box->text()), SelectionIn(*box));
    });
}

const Control* QtFormWindow::ControlOf(const QObject* widget) const {
    const auto found = std::ranges::find(widgets_, widget, &Widgets::value_type::second);
    return found == widgets_.end() ? nullptr : found->first;
}

bool QtFormWindow::eventFilter(QObject* object, QEvent* event) {
    const Control* const control = ControlOf(object);
    if (!control) return QDialog::eventFilter(object, event);
    QWidget& widget = *widgets_.at(control);
    if (event->type() == QEvent::FocusIn && control->TakesFocus()) {
        ComeFocus(*control, widget, *static_cast<QFocusEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::MouseButtonRelease && control == pressed_on_) {
        ComeRelease(*control, widget, *event);
        return true;
    }
    return ActivatesItem(*event, *control) || QDialog::eventFilter(object, event);
}

void QtFormWindow::ComeFocus(const Control& control, QWidget& widget, QFocusEvent& event) {
    const QPointer<QWidget> still_there = &widget;
    static_cast<QObject&>(widget).event(&event);
    if (event.reason() == Qt::PopupFocusReason) return;
    // Who comes back from another program goes on typing where the caret was left.
    const bool comes_back = event.reason() == Qt::ActiveWindowFocusReason && focused_ == &control;
    focused_ = &control;
    if (comes_back) return;
    const bool pressed = event.reason() == Qt::MouseFocusReason && qobject_cast<QLineEdit*>(&widget);
    pressed_on_ = pressed ? &control : nullptr;
    Report([&](Form& form) {
        form.GotFocus(control);
        SelectAgain(control, still_there);
    });
}

// The press of the button has put the caret to the mouse after the focus had come.
void QtFormWindow::ComeRelease(const Control& control, QWidget& widget, QEvent& event) {
    pressed_on_ = nullptr;
    const QPointer<QLineEdit> box = qobject_cast<QLineEdit*>(&widget);
    static_cast<QObject&>(widget).event(&event);
    if (box && !box->hasSelectedText()) SelectAgain(control, box);
}

// Whole texts are selected again, even if the form does not know that the caret has moved since.
void QtFormWindow::SelectAgain(const Control& control, QWidget* widget) {
    auto* const box = qobject_cast<QLineEdit*>(widget);
    if (box && !let_go_ && control.Selection().length != 0) Select(*box, control.Selection());
}

// Enter on a list is the item's; the window would take it for its default button, too.
bool QtFormWindow::ActivatesItem(const QEvent& event, const Control& control) {
    auto* const list = qobject_cast<QListWidget*>(widgets_.at(&control));
    if (!list || event.type() != QEvent::KeyPress) return false;
    const int key = static_cast<const QKeyEvent&>(event).key();
    const int row = SelectedRow(*list);
    if (row < 0 || (key != Qt::Key_Return && key != Qt::Key_Enter)) return false;
    Report([&](Form& form) { form.ActivateItem(control, row); });
    return true;
}

void QtFormWindow::reject() {
    Report([](Form& form) { form.EscapePressed(); });
}

void QtFormWindow::closeEvent(QCloseEvent* event) {
    event->ignore();  // what becomes of the window is the form's decision
    Report([](Form& form) { form.CloseAsked(); });
}

bool QtFormWindow::event(QEvent* event) {
    const auto type = event->type();
    const bool handled = QDialog::event(event);
    if (type == QEvent::WindowActivate) Report([](Form& form) { form.Activated(); });
    if (type == QEvent::WindowActivate || type == QEvent::Move || type == QEvent::Resize) FitIntoNewFrame();
    return handled;
}

// Some systems report the size of their frame only after the window is shown.
void QtFormWindow::FitIntoNewFrame() {
    const auto form = form_.lock();
    if (!form || !isVisible() || windowHandle()->frameMargins() == frame_) return;
    Fit(*form);
    screen_->KeepOnScreen(*this);
}

void QtFormWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    const bool sizes = event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
    const auto form = form_.lock();
    if (!sizes || !form || !layout_) return;
    kept_width_ = 0;
    Fit(*form);
}

// --- What the form shows
//
// Hiding a control moves its focus on, showing a window gives it the focus; a handler may then unload the
// form.

void QtFormWindow::Draw(const Control& control, ControlChange change) {
    const auto form = form_.lock();
    const auto found = widgets_.find(&control);
    if (!form || found == widgets_.end()) return;
    ShowState(control, *found->second, change);
    if (let_go_) return;
    const bool typed = control.Kind() == ControlKind::TextBox || control.Kind() == ControlKind::MaskedBox;
    if (change == ControlChange::Visible) DrawDrawn(*form);
    if (change == ControlChange::Text && !typed) DrawTexts(*form);
}

void QtFormWindow::Draw(FormChange change) {
    const auto form = form_.lock();
    if (!form) return;
    switch (change) {
        case FormChange::Caption:
            DrawTexts(*form);
            break;
        case FormChange::Icon:
            setWindowIcon(ToQtIcon(form->FormIcon()));
            break;
        case FormChange::Height:
            DrawDrawn(*form);
            break;
        case FormChange::Visible:
            ShowOrHide(*form);
            break;
    }
}

void QtFormWindow::PutFocus(const Control& control) {
    const auto found = widgets_.find(&control);
    if (found == widgets_.end()) return;
    if (!found->second->hasFocus()) focused_ = nullptr;  // told when it has come, though the window sleeps
    found->second->setFocus(Qt::OtherFocusReason);
}

void QtFormWindow::DrawTexts(const Form& form) {
    setWindowTitle(ToQt(form.Caption()));
    std::map<const Control*, std::size_t> keys;
    for (const auto& key : AccessKeysOf(form))
        keys[key.control] = key.place;
    for (const auto& [control, widget] : widgets_) {
        const auto key = keys.find(control);
        ShowCaption(*control, *widget,
                    ToQt(MarkAccessKey(control->Text(), key == keys.end() ? kNoAccessKey : key->second)));
        if (const QString name = AccessibleNameOf(form, *control); !name.isEmpty())
            widget->setAccessibleName(name);
    }
    Fit(form);
}

// Which controls are drawn decides about access keys and size, too.
void QtFormWindow::DrawDrawn(const Form& form) {
    const Widgets widgets = widgets_;
    for (const auto& [control, widget] : widgets) {
        const bool is_part = !control->Row().frame.empty();  // seen with its frame, and measured without
        widget->setVisible(is_part ? control->Visible() : form.Drawn(*control));
        if (let_go_) return;
    }
    DrawTexts(form);
}

// As long as the window is shown no text that gets shorter makes it narrower.
void QtFormWindow::Fit(const Form& form) {
    frame_ = windowHandle() ? windowHandle()->frameMargins() : QMargins();
    const bool cut_off = form.Height().rule == FormHeight::Rule::EndsAt;
    const QSize room = Room();
    const QSize least(std::min(LeastWidth(), room.width()), LeastHeight(form));
    QSize size = layout_->NeededSize(room, cut_off).expandedTo(least);
    if (isVisible()) size = size.expandedTo(QSize(std::min(kept_width_, room.width()), 0));
    kept_width_ = size.width();
    const QSize before = this->size();
    const bool has_list = std::ranges::any_of(form.Controls(), [&](const Control& control) {
        return control.Kind() == ControlKind::ListView && form.Drawn(control);
    });
    if (has_list) {  // more room is more items
        setMinimumSize(size);
        resize(isVisible() ? this->size().expandedTo(size) : size);
    } else {
        setFixedSize(size);
    }
    if (isVisible() && before.expandedTo(this->size()) != before) screen_->KeepOnScreen(*this);
}

// What a window may take of its screen. A frame that is not known yet has a title bar at the least.
QSize QtFormWindow::Room() const {
    const int title =
        std::max(frame_.top() + frame_.bottom(), style()->pixelMetric(QStyle::PM_TitleBarHeight));
    return screen()->availableGeometry().size() - QSize(frame_.left() + frame_.right(), title);
}

// So that the title bar has room for the caption, which many systems write in bold, beside its buttons.
int QtFormWindow::LeastWidth() const {
    QFont bold = font();
    bold.setBold(true);
    return QFontMetrics(bold).horizontalAdvance(windowTitle()) + 5 * fontMetrics().height();
}

// A height is asked for in twips, and for the outer edges. Controls that need more get more.
int QtFormWindow::LeastHeight(const Form& form) const {
    if (form.Height().rule != FormHeight::Rule::Outer) return 0;
    const double outer = std::round(form.Height().twips / kTwipsPerInch * logicalDpiY());
    return static_cast<int>(outer) - frame_.top() - frame_.bottom();
}

void QtFormWindow::ShowOrHide(const Form& form) {
    if (!form.Visible()) {
        const bool active = isActiveWindow();
        screen_->Hide(*this);
        if (active) screen_->Activate(owner_);
        return;
    }
    if (!isVisible()) {
        setWindowModality(form.Modal() ? Qt::ApplicationModal : Qt::NonModal);
        setWindowFlag(Qt::WindowStaysOnTopHint, !form.Modal());
        setAttribute(Qt::WA_ShowWithoutActivating, !form.Modal() && screen_->Asks());
        owner_ = screen_->OwnerOf(form);
        if (owner_) setScreen(owner_->screen());
        focused_ = nullptr;
        Fit(form);
    }
    screen_->Present(*this, owner_, form.Modal() ? nullptr : &form);
    if (let_go_ || !form.Visible()) return;
    layout_->SetTabOrder(form, widgets_);
    Fit(form);  // many systems have reported their frame by now
}

}  // namespace kq
