// The public class of an event loop, over the state that a port implements. A wait holds the state, so a task
// may destroy the loop object.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include <kqappsession/Error.h>
#include <kqappsession/EventLoop.h>

namespace kq {

inline constexpr std::string_view kWatchedAlready =
    "The socket is already watched; change that watch instead";

// State: the members of EventLoop without Now and Run, and Close. After Close nothing is called any more, and
// all functions of the callers are released.
template <class State>
class LoopFace final : public EventLoop {
 public:
    explicit LoopFace(std::shared_ptr<State> state) : state_(std::move(state)) {}
    ~LoopFace() override { state_->Close(); }

    TimePoint Now() const override { return std::chrono::steady_clock::now(); }
    void Post(Task task) override {
        Require(task);
        state_->Post(std::move(task));
    }
    TimerId StartTimer(Milliseconds delay, Task task) override {
        Require(task);
        return state_->StartTimer(delay, std::move(task));
    }
    void CancelTimer(TimerId id) override { state_->CancelTimer(id); }
    WatchId Watch(NativeSocket socket, Readiness wanted, std::function<void(Readiness)> ready) override {
        Require(ready);
        return state_->Watch(socket, wanted, std::move(ready));
    }
    void ChangeWatch(WatchId id, Readiness wanted) override { state_->ChangeWatch(id, wanted); }
    void Unwatch(WatchId id) override { state_->Unwatch(id); }
    void ProcessPending() override { state_->ProcessPending(); }
    bool RunUntil(const std::function<bool()>& done, TimePoint deadline) override {
        Require(done);
        return state_->RunUntil(done, deadline);
    }
    void Run() override {
        state_->RunUntil([] { return false; }, TimePoint::max());
    }
    void Quit() override { state_->Quit(); }
    bool Quitting() const override { return state_->Quitting(); }

 private:
    // Refused where the caller passes it, not when it would be called.
    template <class Function>
    static void Require(const Function& function) {
        if (!function)
            Raise(RuntimeError::InvalidProcedureCall, "The event loop was given an empty function");
    }

    std::shared_ptr<State> state_;
};

}  // namespace kq
