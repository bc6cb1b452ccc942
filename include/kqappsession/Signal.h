// Events inside one thread. A Signal calls the handlers that are connected to it; an Owner disconnects
// everything that was bound to it.
//
// A handler may do anything while it runs: disconnect itself or others, connect new handlers (they receive
// the next event), destroy the signal's object or its own owner. After an Owner is destroyed or cancelled,
// nothing that was bound to it is called again. Signals and owners belong to the thread of their event loop.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <kqappsession/Export.h>

namespace kq {

// What a callback is bound to. A class that hands out callbacks has an Owner as its last member, so that the
// callbacks end before the other members are destroyed.
class Owner {
 public:
    Owner() : token_(std::make_shared<Token>()) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    // Ends everything that has been bound so far. The owner can be used again.
    void Cancel() { token_ = std::make_shared<Token>(); }

    // A callable that does nothing once the owner is gone.
    template <class F>
    // A callable that does nothing once the owner is destroyed or cancelled.
    auto Bind(F f) const {
        return [alive = std::weak_ptr<Token>(token_), f = std::move(f)](auto&&... args) mutable {
            if (!alive.expired()) f(std::forward<decltype(args)>(args)...);
        };
    }

    // Expires when the owner is destroyed or cancelled.
    std::weak_ptr<const void> Life() const { return token_; }

 private:
    struct Token {};
    std::shared_ptr<Token> token_;
};

// Receives the exceptions that leave event handlers: an exception never passes through a Signal into the code
// that raised the event. There is one handler for the whole process; it may be called on any thread, and what
// it throws is dropped. The default handler, or an empty one, drops the exception. Setting a handler returns
// the one that was set before.
using StrayExceptionHandler = std::function<void(std::exception_ptr)>;
KQ_EXPORT StrayExceptionHandler SetStrayExceptionHandler(StrayExceptionHandler handler);
KQ_EXPORT void ReportStrayException(std::exception_ptr exception) noexcept;

template <class... Args>
class Signal {
 public:
    using Handler = std::function<void(Args...)>;

    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    // Calls `handler` at every event until `owner` is destroyed or cancelled. Handlers are called in the
    // order in which they were connected.
    void Connect(const Owner& owner, Handler handler) {
        slots_->push_back(std::make_shared<Slot>(Slot{owner.Life(), std::move(handler)}));
    }

    // Disconnects every handler of this owner from this signal.
    void Disconnect(const Owner& owner) {
        const auto life = owner.Life().lock();
        for (auto& slot : *slots_) {
            if (slot->life.lock() == life) slot->life.reset();
        }
    }

    bool HasHandlers() const {
        for (const auto& slot : *slots_) {
            if (!slot->life.expired()) return true;
        }
        return false;
    }

    // Raises the event. All handlers get the same objects as by-reference arguments.
    void operator()(Args... args) const {
        const auto all = slots_;  // outlives a handler that destroys the signal
        std::erase_if(*all, [](const auto& s) { return s->life.expired(); });
        const auto copy = *all;
        for (const auto& slot : copy) {
            if (slot->life.expired())
                continue;  // not held: an event inside the handler must see the owner gone
            try {
                slot->handler(args...);
            } catch (...) {
                ReportStrayException(std::current_exception());
            }
        }
    }

 private:
    struct Slot {
        std::weak_ptr<const void> life;
        Handler handler;
    };
    std::shared_ptr<std::vector<std::shared_ptr<Slot>>> slots_ =
        std::make_shared<std::vector<std::shared_ptr<Slot>>>();
};

}  // namespace kq
