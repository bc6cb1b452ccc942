// The system is informed of owners (as transient parents), the toolkit is not: there an owner would destroy
// its dialogs together with itself.
#include "forms/qt/QtScreen.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace kq {

namespace {

bool IsSeen(const QWidget* window) {
    return window && window->isVisible() && !window->isMinimized();
}

// A new window's frame is not known, so places are reckoned without it, there and back.
QRect PlaceOf(const QWidget& window) {
    return {window.pos(), window.size()};
}

QRect MovedInto(const QRect& room, QRect place) {
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() - place.width() + 1)));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() - place.height() + 1)));
    return place;
}

}  // namespace

QWidget* QtScreen::TopOwner() {
    if (QWidget* const modal = QApplication::activeModalWidget()) return modal;
    QWidget* const active = QApplication::activeWindow();
    if (active && active->isVisible() && !topmost_.contains(active)) program_ = active;
    return program_ && program_->isVisible() ? program_.data() : nullptr;
}

QWidget* QtScreen::OwnerOf(const Form& form) {
    const auto owner = form.OwnerForm();
    const auto found = owner ? windows_.find(owner.get()) : windows_.end();
    if (found != windows_.end() && found->second && found->second->isVisible()) return found->second;
    return TopOwner();
}

void QtScreen::Remove(const QWidget& window) {
    std::erase_if(windows_, [&](const auto& entry) { return !entry.second || entry.second == &window; });
    std::erase_if(topmost_, [&](const auto& entry) { return entry.first == &window; });
    std::erase_if(modal_, [&](const auto& entry) { return !entry || entry == &window; });
}

bool QtScreen::Asks() const {
    return std::ranges::any_of(modal_, [](const auto& window) { return window && window->isVisible(); });
}

void QtScreen::Present(QWidget& window, QWidget* owner, const Form* topmost) {
    bool activates = !topmost;
    if (topmost)
        topmost_[&window] = &window;
    else if (std::ranges::none_of(modal_, [&](const auto& known) { return known == &window; }))
        modal_.emplace_back(&window);
    if (!window.isVisible()) {
        activates |= !Asks();
        window.winId();  // makes the system's window
        window.windowHandle()->setTransientParent(owner ? owner->windowHandle() : nullptr);
        Place(window, owner);
        const QSize placed = window.size();
        window.show();
        if (!window.isVisible()) return;                    // hidden again by a handler
        if (window.size() != placed) Place(window, owner);  // message boxes reckon at the showing
        KeepOnScreen(window);                               // with its frame, where that is known by now
    }
    window.raise();
    if (activates) window.activateWindow();
    // Said to the system by a flag, too; not every system listens.
    for (const auto& [other, still_there] : topmost_) {
        if (other != &window && still_there && still_there->isVisible()) still_there->raise();
    }
}

void QtScreen::Hide(QWidget& window) {
    if (window.isVisible()) last_ = PlaceOf(window).center();
    window.hide();
}

void QtScreen::Place(QWidget& window, const QWidget* owner) const {
    const QScreen* screen = window.screen();
    if (IsSeen(owner))
        screen = owner->screen();
    else if (const QScreen* const last = last_ ? QApplication::screenAt(*last_) : nullptr)
        screen = last;
    const QRect room = screen->availableGeometry();
    QRect place(QPoint(0, 0), window.size());
    place.moveCenter(IsSeen(owner) ? owner->frameGeometry().center() : last_.value_or(room.center()));
    for (const auto& [other, still_there] : topmost_) {
        if (other == &window || !still_there || !still_there->isVisible()) continue;
        // A window that has just come may get a title bar yet.
        QRect taken = still_there->frameGeometry();
        if (taken == still_there->geometry()) taken.adjust(0, 0, 0, 3 * still_there->fontMetrics().height());
        if (taken.intersects(place)) place.moveTop(taken.bottom() + 1);
    }
    window.move(MovedInto(room, place).topLeft());
}

void QtScreen::KeepOnScreen(QWidget& window) const {
    const QRect place = window.frameGeometry();
    const QRect within = MovedInto(window.screen()->availableGeometry(), place);
    if (within != place) window.move(within.topLeft());
}

void QtScreen::Activate(const QWidget* owner) const {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window == owner && window->isVisible()) window->activateWindow();
    }
}

}  // namespace kq
