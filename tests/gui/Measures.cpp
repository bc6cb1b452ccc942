// Measured from the texts and the fonts themselves, not from what the layout believes that they need.
#include "gui/Measures.h"

#include <QAbstractButton>
#include <QGuiApplication>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QStyle>
#include <algorithm>
#include <map>

namespace kq {
namespace {

constexpr int kTitleButtons = 50;  // what the toolkit itself leaves beside the title of a message box

std::string NameOf(const QWidget& widget) {
    const std::string name = widget.objectName().toStdString();
    return name.empty() ? widget.metaObject()->className() : name;
}

QString WithoutMarks(const QString& text) {
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) ++i;
        plain += text[i];
    }
    return plain;
}

std::vector<QWidget*> ShownIn(const QWidget& window) {
    std::vector<QWidget*> shown;
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->window() == &window) shown.push_back(widget);
    }
    return shown;
}

bool TextFits(const QLabel& label) {
    const QString text = label.buddy() ? WithoutMarks(label.text()) : label.text();
    const QRect room = label.contentsRect().marginsRemoved(QMargins(label.margin(), 0, label.margin(), 0));
    const int wrap = label.wordWrap() ? Qt::TextWordWrap : 0;
    const QRect needed = label.fontMetrics().boundingRect(QRect(0, 0, room.width(), 10'000), wrap, text);
    return needed.width() <= room.width() && needed.height() <= room.height();
}

bool TextFits(const QAbstractButton& button) {
    const QSize text = button.fontMetrics().size(Qt::TextSingleLine, WithoutMarks(button.text()));
    const int indicator = button.isCheckable()
                              ? button.style()->pixelMetric(QStyle::PM_IndicatorWidth) +
                                    button.style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing)
                              : 2 * button.style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
    return text.width() + indicator <= button.width() && text.height() <= button.height();
}

bool TextFits(const QLineEdit& box) {
    return box.fontMetrics().height() <= box.contentsRect().height() &&
           box.fontMetrics().horizontalAdvance(box.text()) < box.contentsRect().width();
}

// What the toolkit itself asks for: a wrapped label by its width, everything else as it is.
bool HasItsSize(const QWidget& widget) {
    if (widget.hasHeightForWidth()) return widget.height() >= widget.heightForWidth(widget.width());
    const bool scrolls = widget.inherits("QAbstractScrollArea");
    const QSize hint = scrolls || widget.inherits("QLineEdit") ? widget.minimumSizeHint() : widget.sizeHint();
    return widget.width() >= hint.width() && widget.height() >= hint.height();
}

bool TextFits(const QWidget& widget) {
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
        return label->text().isEmpty() || TextFits(*label);
    }
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) return TextFits(*button);
    if (const auto* const box = qobject_cast<const QLineEdit*>(&widget)) return TextFits(*box);
    return true;
}

bool Collides(const QWidget& one, const QWidget& other) {
    return one.parentWidget() == other.parentWidget() && one.geometry().intersects(other.geometry());
}

}  // namespace

std::vector<std::string> LayoutFaults(const QWidget& window) {
    std::vector<std::string> faults;
    const auto shown = ShownIn(window);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const QWidget& widget = *shown[i];
        // What scrolls may be larger than what it is seen through.
        if (widget.parentWidget()->objectName().startsWith("qt_scroll")) continue;
        if (!TextFits(widget)) faults.push_back(NameOf(widget) + " is clipped");
        if (!HasItsSize(widget)) faults.push_back(NameOf(widget) + " is too small");
        if (!widget.parentWidget()->rect().contains(widget.geometry()))
            faults.push_back(NameOf(widget) + " sticks out");
        for (std::size_t other = 0; other < i; ++other) {
            if (Collides(widget, *shown[other]))
                faults.push_back(NameOf(widget) + " lies on " + NameOf(*shown[other]));
        }
    }
    if (window.fontMetrics().horizontalAdvance(window.windowTitle()) + kTitleButtons > window.width())
        faults.push_back("the title is clipped");
    if (!window.screen()->availableGeometry().contains(window.frameGeometry()))
        faults.push_back("the window leaves the screen: " + std::to_string(window.frameGeometry().width()) +
                         " x " + std::to_string(window.frameGeometry().height()));
    return faults;
}

std::vector<std::string> UntranslatedTexts(const QWidget& window, const std::vector<std::string>& told) {
    QStringList texts{window.windowTitle()};
    for (const QWidget* const widget : ShownIn(window)) {
        if (const auto* const label = qobject_cast<const QLabel*>(widget))
            texts += label->buddy() ? WithoutMarks(label->text()) : label->text();
        const auto* const button = qobject_cast<const QAbstractButton*>(widget);
        if (button && !window.inherits("QMessageBox")) texts += WithoutMarks(button->text());
    }
    std::vector<std::string> faults;
    for (const QString& text : texts) {
        QString own = text;
        for (const std::string& word : told)
            own.remove(QString::fromStdString(word));
        const bool plain = std::ranges::any_of(
            own, [](QChar letter) { return letter.unicode() < 128 && letter.isLetter(); });
        const bool whole = text.isEmpty() || (text.startsWith('[') && text.endsWith(']'));
        if (plain || !whole) faults.push_back(text.toStdString());
    }
    return faults;
}

std::vector<std::string> DoubleAccessKeys(const QWidget& window) {
    std::vector<std::string> doubles;
    std::map<QString, std::string> holders;
    for (const QWidget* const widget : ShownIn(window)) {
        QString text;
        if (const auto* const label = qobject_cast<const QLabel*>(widget); label && label->buddy())
            text = label->text();
        if (const auto* const button = qobject_cast<const QAbstractButton*>(widget)) text = button->text();
        const QString key = QKeySequence::mnemonic(text).toString();
        if (key.isEmpty()) continue;
        const auto [holder, first] = holders.emplace(key, NameOf(*widget));
        if (!first)
            doubles.push_back(NameOf(*widget) + " and " + holder->second + " share " + key.toStdString());
    }
    return doubles;
}

std::vector<std::string> TabOrderFaults(QWidget& window) {
    std::vector<std::string> faults;
    const QWidget* before = nullptr;
    for (QWidget* widget = window.nextInFocusChain(); widget != &window;
         widget = widget->nextInFocusChain()) {
        if (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0 || widget->focusProxy())
            continue;
        const QPoint here = widget->mapTo(&window, widget->rect().center());
        if (before) {
            const QPoint there = before->mapTo(&window, before->rect().center());
            // A column beside a list is read after the list.
            const bool below = here.y() > there.y() + 4 || here.x() > there.x();
            if (!below) faults.push_back(NameOf(*widget) + " comes after " + NameOf(*before));
        }
        before = widget;
    }
    return faults;
}

}  // namespace kq
