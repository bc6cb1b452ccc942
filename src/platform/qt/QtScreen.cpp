// Owners are told to the system only (as transient parents), never to the toolkit: there they would take
// their dialogs along when they are destroyed.
#include "platform/qt/QtScreen.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace kq {

QWidget* QtScreen::TopOwner() const {
    if (QWidget* const modal = QApplication::activeModalWidget()) return modal;
    QWidget* const active = QApplication::activeWindow();
    return active && !topmost_.contains(active) ? active : nullptr;
}

QWidget* QtScreen::OwnerOf(const Form& form) const {
    const auto owner = form.OwnerForm();
    const auto found = owner ? windows_.find(owner.get()) : windows_.end();
    if (found != windows_.end() && found->second && found->second->isVisible()) return found->second;
    return TopOwner();
}

void QtScreen::Remove(const QWidget& window) {
    std::erase_if(windows_, [&](const auto& entry) { return !entry.second || entry.second == &window; });
    std::erase_if(topmost_, [&](const auto& entry) { return entry.first == &window; });
}

void QtScreen::Present(QWidget& window, QWidget* owner, const Form* topmost) {
    if (topmost) topmost_[&window] = &window;
    if (!window.isVisible()) {
        window.winId();  // makes the system's window
        window.windowHandle()->setTransientParent(owner ? owner->windowHandle() : nullptr);
        Place(window, owner);
        window.show();
        if (!window.isVisible()) return;  // hidden again by who heard of it
    }
    window.raise();
    if (!topmost) window.activateWindow();
    // Said to the system by a flag, too; not every system listens.
    for (const auto& [other, still_there] : topmost_) {
        if (other != &window && still_there && still_there->isVisible()) still_there->raise();
    }
}

void QtScreen::Place(QWidget& window, const QWidget* owner) const {
    const QScreen* const screen = owner ? owner->screen() : window.screen();
    const QRect room = screen->availableGeometry();
    QRect place(QPoint(0, 0), window.size());
    place.moveCenter(owner && owner->isVisible() ? owner->frameGeometry().center() : room.center());
    for (const auto& [other, still_there] : topmost_) {
        if (other == &window || !still_there || !still_there->isVisible()) continue;
        // A window that has just come may get a title bar yet.
        QRect taken = still_there->frameGeometry();
        if (taken == still_there->geometry()) taken.adjust(0, 0, 0, 3 * still_there->fontMetrics().height());
        if (taken.intersects(place)) place.moveTop(taken.bottom() + 1);
    }
    place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() - place.width() + 1)));
    place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() - place.height() + 1)));
    window.move(place.topLeft());
}

void QtScreen::Activate(const QWidget* owner) const {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window == owner && window->isVisible()) window->activateWindow();
    }
}

}  // namespace kq
