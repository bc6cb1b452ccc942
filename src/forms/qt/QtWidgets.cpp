#include "forms/qt/QtWidgets.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <algorithm>

#include "forms/qt/QtText.h"

namespace kq {
namespace {

constexpr int kSteps = 1000;    // of a progress bar
constexpr int kLeastLine = 44;  // average characters, to which lines are shortened at most

// Plain text: what a server sends is shown as it is.
QLabel* MakeLabel(QWidget& parent) {
    auto* const label = new QtLabel(&parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLineEdit* MakeBox(const Control& control, QWidget& parent) {
    auto* const box = new QLineEdit(&parent);
    if (control.Kind() == ControlKind::MaskedBox) {
        box->setEchoMode(QLineEdit::Password);
        box->setStyleSheet("lineedit-password-character: 42");  // "*"
    }
    return box;
}

QProgressBar* MakeBar(QWidget& parent) {
    auto* const bar = new QProgressBar(&parent);
    bar->setRange(0, kSteps);
    return bar;
}

int StepsOf(const Progress& progress) {
    if (progress.maximum <= progress.minimum) return 0;
    const double range = static_cast<double>(progress.maximum) - static_cast<double>(progress.minimum);
    const double done = static_cast<double>(progress.value) - static_cast<double>(progress.minimum);
    return static_cast<int>(std::clamp(done / range, 0.0, 1.0) * kSteps);
}

void ShowText(const Control& control, QWidget& widget) {
    auto* const box = qobject_cast<QLineEdit*>(&widget);
    if (!box) return;
    if (control.Kind() == ControlKind::MaskedBox) {
        if (control.Length() == 0) box->clear();
    } else if (FromQt(box->text()) != control.Text()) {
        box->setText(ToQt(control.Text()));
        Select(*box, control.Selection());
    }
}

void ShowItems(const Control& control, QListWidget& list) {
    const QSignalBlocker silence(list);
    list.clear();
    for (const auto& item : control.Items())
        list.addItem(ToQt(item));
}

void ShowSelectedItem(const Control& control, QListWidget& list) {
    const QSignalBlocker silence(list);
    list.setCurrentRow(static_cast<int>(control.SelectedItem()));
    if (control.SelectedItem() == Control::kNoItem) list.clearSelection();
}

}  // namespace

void QtLabel::SetLine(int line) {
    const int character = fontMetrics().averageCharWidth();
    setWordWrap(false);
    const bool several = QLabel::sizeHint().width() > line;
    setWordWrap(several);
    if (!several) return;
    const int least = std::min(line, kLeastLine * character);
    const int lines = heightForWidth(line);
    for (width_ = line; width_ - character >= least && heightForWidth(width_ - character) == lines;)
        width_ -= character;
    updateGeometry();
}

QSize QtLabel::sizeHint() const {
    return wordWrap() ? QSize(width_, heightForWidth(width_)) : QLabel::sizeHint();
}

QSize QtLabel::minimumSizeHint() const {
    return wordWrap() ? QSize(width_, fontMetrics().height()) : QLabel::sizeHint();
}

QWidget* MakeWidget(const Control& control, QWidget& parent) {
    switch (control.Kind()) {
        case ControlKind::Label:
            return MakeLabel(parent);
        case ControlKind::TextBox:
        case ControlKind::MaskedBox:
            return MakeBox(control, parent);
        case ControlKind::CheckBox:
            return new QCheckBox(&parent);
        case ControlKind::Button:
            return new QPushButton(&parent);
        case ControlKind::ListView:
            return new QListWidget(&parent);
        case ControlKind::ProgressBar:
            return MakeBar(parent);
        case ControlKind::Frame:
            return new QWidget(&parent);
        case ControlKind::Timer:
            break;
    }
    return nullptr;
}

void ShowCaption(const Control& control, QWidget& widget, const QString& caption) {
    if (auto* const label = qobject_cast<QLabel*>(&widget)) {
        // Without a buddy the toolkit takes every "&" as it is.
        label->setText(label->buddy() ? caption : ToQt(control.Text()));
    } else if (auto* const button = qobject_cast<QAbstractButton*>(&widget)) {
        button->setText(caption);
        if (control.OtherText().empty()) return;
        // As wide as with its other text, too.
        const int width = button->sizeHint().width();
        button->setText(ToQt(control.OtherText()));
        button->setMinimumWidth(std::max(width, button->sizeHint().width()));
        button->setText(caption);
    }
}

void ShowState(const Control& control, QWidget& widget, ControlChange change) {
    auto* const list = qobject_cast<QListWidget*>(&widget);
    switch (change) {
        case ControlChange::Text:
            ShowText(control, widget);
            break;
        case ControlChange::Selection:
            if (auto* const box = qobject_cast<QLineEdit*>(&widget)) Select(*box, control.Selection());
            break;
        case ControlChange::Enabled:
            widget.setEnabled(control.Enabled());
            break;
        case ControlChange::Checked:
            if (auto* const check_box = qobject_cast<QCheckBox*>(&widget))
                check_box->setChecked(control.Checked());
            break;
        case ControlChange::Items:
            if (list) ShowItems(control, *list);
            break;
        case ControlChange::SelectedItem:
            if (list) ShowSelectedItem(control, *list);
            break;
        case ControlChange::Progress:
            if (auto* const bar = qobject_cast<QProgressBar*>(&widget))
                bar->setValue(StepsOf(control.Progress()));
            break;
        case ControlChange::Visible:
            break;  // the form's business: a control may be in a part that is cut off
    }
}

QString AccessibleNameOf(const Form& form, const Control& control) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::MaskedBox:
        case ControlKind::ListView:
        case ControlKind::ProgressBar:
            break;
        default:
            return {};
    }
    const Control* before = nullptr;
    const Control* buddy = nullptr;
    bool passed = false;
    for (const auto& other : form.Controls()) {
        passed |= &other == &control;
        if (other.Kind() != ControlKind::Label) continue;
        if (other.Row().buddy == control.Name()) buddy = &other;
        if (!passed && other.Row().frame == control.Row().frame) before = &other;
    }
    if (buddy) return ToQt(buddy->Text());
    return ToQt(before ? before->Text() : form.Caption());
}

Selection SelectionIn(const QLineEdit& box) {
    const QString text = box.text();
    const auto characters = [&text](qsizetype from, qsizetype count) {
        return static_cast<std::size_t>(text.mid(from, count).toUcs4().size());
    };
    const bool selected = box.hasSelectedText();
    const int start = selected ? box.selectionStart() : box.cursorPosition();
    return {characters(0, start), selected ? characters(start, box.selectionLength()) : 0};
}

void Select(QLineEdit& box, Selection selection) {
    const auto characters = box.text().toUcs4();
    const auto units = [&characters](std::size_t from, std::size_t count) {
        const auto first = std::min(static_cast<qsizetype>(from), characters.size());
        const auto taken = characters.mid(first, static_cast<qsizetype>(count));
        return static_cast<int>(
            QString::fromUcs4(reinterpret_cast<const char32_t*>(taken.data()), taken.size()).size());
    };
    const int start = units(0, selection.start);
    if (selection.length == 0)
        box.setCursorPosition(start);
    else
        box.setSelection(start, units(selection.start, selection.length));
}

}  // namespace kq
