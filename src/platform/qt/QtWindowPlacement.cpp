// The toolkit leaves the places of minimised and maximised windows to the system; what was set for them is
// kept with the window and told again.
#include "platform/qt/QtWindowPlacement.h"

#include <QPoint>
#include <QVariant>
#include <QWidget>
#include <QWindow>

namespace kq {
namespace {

enum ShowCommand { kHide = 0, kNormal = 1, kMinimised = 2, kMaximised = 3 };
constexpr std::int32_t kSetMinPosition = 1;
constexpr std::int32_t kRestoreToMaximised = 2;

constexpr const char* kMaxPosition = "kqMaxPosition";
constexpr const char* kMinPosition = "kqMinPosition";

QWidget* Find(WindowPlacement::NativeWindow handle) {
    QWidget* const widget = QWidget::find(static_cast<WId>(handle));
    return widget ? widget->window() : nullptr;
}

// What the system draws around the window; nothing as long as it was never shown.
QMargins FrameOf(const QWidget& window) {
    return window.windowHandle() ? window.windowHandle()->frameMargins() : QMargins();
}

QPoint Kept(const QWidget& window, const char* name) {
    const QVariant kept = window.property(name);
    return kept.isValid() ? kept.toPoint() : QPoint(-1, -1);
}

// All commands of the platform; those beyond the first four differ in what becomes active.
ShowCommand Plain(std::int32_t command) {
    switch (command) {
        case 0:
            return kHide;
        case 2:
        case 6:
        case 7:
        case 11:
            return kMinimised;
        case 3:
            return kMaximised;
        default:
            return kNormal;
    }
}

class QtWindowPlacement final : public WindowPlacement {
 public:
    std::optional<Placement> Get(NativeWindow handle) const override {
        const QWidget* const window = Find(handle);
        if (!window) return std::nullopt;
        Placement placement;
        const bool normal = !window->isMinimized() && !window->isMaximized() && !window->isFullScreen();
        const QRect inner = normal ? window->geometry() : window->normalGeometry();
        const QRect outer = inner.marginsAdded(FrameOf(*window));
        placement.normal_left = outer.x();
        placement.normal_top = outer.y();
        placement.normal_right = outer.x() + outer.width();
        placement.normal_bottom = outer.y() + outer.height();
        placement.max_position_x = Kept(*window, kMaxPosition).x();
        placement.max_position_y = Kept(*window, kMaxPosition).y();
        placement.min_position_x = Kept(*window, kMinPosition).x();
        placement.min_position_y = Kept(*window, kMinPosition).y();
        if (window->property(kMinPosition).isValid()) placement.flags |= kSetMinPosition;
        if (window->isMinimized()) {
            placement.show_command = kMinimised;
            if (window->isMaximized()) placement.flags |= kRestoreToMaximised;
        } else {
            placement.show_command = window->isMaximized() ? kMaximised : kNormal;
        }
        return placement;
    }

    bool Set(NativeWindow handle, const Placement& placement) override {
        QWidget* const window = Find(handle);
        if (!window) return false;
        window->setProperty(kMaxPosition, QPoint(placement.max_position_x, placement.max_position_y));
        const bool min_given = (placement.flags & kSetMinPosition) != 0;
        window->setProperty(
            kMinPosition,
            min_given ? QVariant(QPoint(placement.min_position_x, placement.min_position_y)) : QVariant());
        const ShowCommand command = Plain(placement.show_command);
        // The rectangle first, in the normal state: it is where the window goes back to.
        if (window->windowState() != Qt::WindowNoState) window->setWindowState(Qt::WindowNoState);
        const QRect outer(placement.normal_left, placement.normal_top,
                          placement.normal_right - placement.normal_left,
                          placement.normal_bottom - placement.normal_top);
        window->setGeometry(outer.marginsRemoved(FrameOf(*window)));
        Qt::WindowStates state = Qt::WindowNoState;
        if (command == kMaximised) state = Qt::WindowMaximized;
        if (command == kMinimised) {
            state = Qt::WindowMinimized;
            if ((placement.flags & kRestoreToMaximised) != 0) state |= Qt::WindowMaximized;
        }
        window->setWindowState(state);
        window->setVisible(command != kHide);
        return true;
    }
};

}  // namespace

std::shared_ptr<WindowPlacement> MakeQtWindowPlacement() {
    return std::make_shared<QtWindowPlacement>();
}

}  // namespace kq
