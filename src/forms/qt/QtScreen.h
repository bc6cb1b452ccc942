// All windows of one program: which owns which, where a new one is shown, which stay above the others.
#pragma once

#include <QPointer>
#include <QWidget>
#include <map>
#include <optional>
#include <vector>

#include "forms/Form.h"

namespace kq {

class QtScreen {
 public:
    // The window that another one belongs to: the modal window on top, else the program's active one or the
    // one that was active last; may be null. Of a form with an owner that owner's window.
    QWidget* OwnerOf(const Form& form);
    QWidget* TopOwner();
    void Add(const Form& form, QWidget& window) { windows_[&form] = &window; }
    void Remove(const QWidget& window);
    bool Asks() const;  // whether one of the modal windows is open

    // Shows a window in the middle of its owner, else where the last window was, the first one in the middle
    // of the screen; beside those that stay on top and below them. `topmost` is the form of a window that
    // stays on top itself, else null; it becomes active unless a modal window is open. A window that is shown
    // already is raised.
    void Present(QWidget& window, QWidget* owner, const Form* topmost);
    void Hide(QWidget& window);
    // Moves a window that has grown, or got a frame, as little as needed.
    void KeepOnScreen(QWidget& window) const;
    // Makes the owner active, if it is still there.
    void Activate(const QWidget* owner) const;

 private:
    void Place(QWidget& window, const QWidget* owner) const;

    std::map<const Form*, QPointer<QWidget>> windows_;
    std::map<QWidget*, QPointer<QWidget>> topmost_;
    std::vector<QPointer<QWidget>> modal_;  // that were shown
    QPointer<QWidget> program_;             // the program's own window that was active last
    std::optional<QPoint> last_;            // the middle of the window that was hidden last
};

}  // namespace kq
