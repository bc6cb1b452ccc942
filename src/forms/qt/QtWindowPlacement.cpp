// The toolkit leaves the positions of minimised and maximised windows to the system. The values that were set
// for them are kept with the window and returned.
//
// The outer rectangle includes the system's frame. Many systems report the frame only after the window is
// shown, and it may be thinner around a maximised window. So the frame that was used in the calculation is
// kept too.
#include "forms/qt/QtWindowPlacement.h"

#include <QEvent>
#include <QPoint>
#include <QTimer>
#include <QVariant>
#include <QWidget>
#include <QWindow>
#include <algorithm>

namespace kq {
namespace {

enum ShowCommand { kHide = 0, kNormal = 1, kMinimised = 2, kMaximised = 3 };
constexpr std::int32_t kSetMinPosition = 1;
constexpr std::int32_t kRestoreToMaximised = 2;

constexpr std::int32_t kFarthest = 1 << 24;  // more than the toolkit can show, and sums stay numbers
constexpr int kSettles = 50;                 // milliseconds without a change
constexpr int kFrameComes = 2000;            // milliseconds after the showing

constexpr const char* kFrame = "kqFrame";
constexpr const char* kAwaiter = "kqFrameAwaiter";
constexpr const char* kMaxPosition = "kqMaxPosition";
constexpr const char* kMinPosition = "kqMinPosition";

QWidget* Find(WindowPlacement::NativeWindow handle) {
    QWidget* const widget = QWidget::find(static_cast<WId>(handle));
    return widget ? widget->window() : nullptr;
}

bool IsNormal(const QWidget& window) {
    return !window.isMinimized() && !window.isMaximized() && !window.isFullScreen();
}

QMargins SystemsFrame(const QWidget& window) {
    return window.windowHandle() ? window.windowHandle()->frameMargins() : QMargins();
}

// What the system draws around the window while it is normal; nothing as long as that is not known.
QMargins FrameOf(QWidget& window) {
    const QVariant kept = window.property(kFrame);
    if (kept.isValid() && !(window.isVisible() && IsNormal(window))) return kept.value<QMargins>();
    const QMargins frame = SystemsFrame(window);
    if (window.isVisible() && IsNormal(window)) window.setProperty(kFrame, QVariant::fromValue(frame));
    return frame;
}

QRect OuterOf(const Placement& placement) {
    const auto within = [](std::int32_t place) { return std::clamp(place, -kFarthest, kFarthest); };
    const int left = within(placement.normal_left);
    const int top = within(placement.normal_top);
    return {left, top, std::max(within(placement.normal_right) - left, 0),
            std::max(within(placement.normal_bottom) - top, 0)};
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

// Sets the outer rectangle once more when the window is normal, the system has told its frame and has
// settled. Belongs to the window.
class FrameAwaiter final : public QObject {
 public:
    FrameAwaiter(QWidget& window, const QRect& outer) : QObject(&window), window_(window), outer_(outer) {
        setObjectName(kAwaiter);
        window.installEventFilter(this);
        settling_.setSingleShot(true);
        settling_.setInterval(kSettles);
        connect(&settling_, &QTimer::timeout, this, [this] { Look(); });
    }

    void Look() {
        if (done_ || !window_.isVisible() || !IsNormal(window_)) return;
        if (end_ == 0) end_ = startTimer(kFrameComes);
        const QMargins frame = FrameOf(window_);
        if (frame.isNull()) return;
        done_ = true;
        window_.setGeometry(outer_.marginsRemoved(frame));
        deleteLater();
    }

 protected:
    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
            case QEvent::Show:
            case QEvent::Move:
            case QEvent::Resize:
            case QEvent::WindowStateChange:
                settling_.start();
                break;
            default:
                break;
        }
        return false;
    }
    void timerEvent(QTimerEvent*) override { deleteLater(); }

 private:
    QWidget& window_;
    const QRect outer_;
    QTimer settling_;
    int end_ = 0;
    bool done_ = false;
};

class QtWindowPlacement final : public WindowPlacement {
 public:
    std::optional<Placement> Get(NativeWindow handle) const override {
        QWidget* const window = Find(handle);
        if (!window) return std::nullopt;
        Placement placement;
        const QRect inner = IsNormal(*window) ? window->geometry() : window->normalGeometry();
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
        if (Get(handle) == placement) {
            window->setVisible(true);
            return true;
        }
        window->setProperty(kMaxPosition, QPoint(placement.max_position_x, placement.max_position_y));
        const bool min_given = (placement.flags & kSetMinPosition) != 0;
        window->setProperty(
            kMinPosition,
            min_given ? QVariant(QPoint(placement.min_position_x, placement.min_position_y)) : QVariant());
        const ShowCommand command = Plain(placement.show_command);
        const QMargins frame = FrameOf(*window);
        // The rectangle first, in the normal state: it is where the window goes back to.
        if (window->windowState() != Qt::WindowNoState) window->setWindowState(Qt::WindowNoState);
        SetOuter(*window, OuterOf(placement), frame);
        Qt::WindowStates state = Qt::WindowNoState;
        if (command == kMaximised) state = Qt::WindowMaximized;
        if (command == kMinimised) {
            state = Qt::WindowMinimized;
            if ((placement.flags & kRestoreToMaximised) != 0) state |= Qt::WindowMaximized;
        }
        window->setWindowState(state);
        window->setVisible(command != kHide);
        if (auto* const awaiter = AwaiterOf(*window)) awaiter->Look();
        return true;
    }

 private:
    static FrameAwaiter* AwaiterOf(const QWidget& window) {
        return dynamic_cast<FrameAwaiter*>(window.findChild<QObject*>(kAwaiter, Qt::FindDirectChildrenOnly));
    }

    static void SetOuter(QWidget& window, const QRect& outer, const QMargins& frame) {
        delete AwaiterOf(window);
        window.setProperty(kFrame, QVariant::fromValue(frame));
        if (!frame.isNull()) {
            window.setGeometry(outer.marginsRemoved(frame));
            return;
        }
        window.move(outer.topLeft());
        window.resize(outer.size());
        new FrameAwaiter(window, outer);
    }
};

}  // namespace

std::shared_ptr<WindowPlacement> MakeQtWindowPlacement() {
    return std::make_shared<QtWindowPlacement>();
}

}  // namespace kq
