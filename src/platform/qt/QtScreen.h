// All windows of one host: who owns whom, where a new one comes, which stay above the others.
#pragma once

#include <QPointer>
#include <QWidget>
#include <map>
#include <string_view>

#include "platform/Form.h"

namespace kq {

class QtScreen {
 public:
    // The window that waits for a modal one: the modal window on top, else the program's active one; may be
    // null. Of a form with an owner that owner's window.
    QWidget* OwnerOf(const Form& form) const;
    QWidget* TopOwner() const;
    void Add(const Form& form, QWidget& window) { windows_[&form] = &window; }
    void Remove(const QWidget& window);

    // Shows a window in the middle of its owner or of the screen, beside those that stay on top and below
    // them. `topmost` is the form of a window that stays on top itself, else null. A window that is shown
    // already is raised.
    void Present(QWidget& window, QWidget* owner, const Form* topmost);
    // Makes the owner active, if it is still there.
    void Activate(const QWidget* owner) const;

 private:
    void Place(QWidget& window, const QWidget* owner) const;

    std::map<const Form*, QPointer<QWidget>> windows_;
    std::map<QWidget*, QPointer<QWidget>> topmost_;
};

}  // namespace kq
