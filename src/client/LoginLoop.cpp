// Each wait inside a step may have run anything, so every step begins with the question whether the client
// has been terminated.
#include "client/LoginLoop.h"

#include <exception>

#include <kqappsession/Error.h>
#include <kqappsession/Signal.h>

#include "base/ErrorNumber.h"

namespace kq {

namespace {

std::string OutcomeOf(const std::exception_ptr& exception) {
    try {
        std::rethrow_exception(exception);
    } catch (const Error& error) {
        return ErrorNumberText(error.Number());
    } catch (const UserGaveUp&) {
        return "cancelled";
    } catch (...) {
        return "failed";
    }
}

}  // namespace

// Busy while the procedure runs; on the way out the work of lsFailed, unless a last step has been done.
class LoginLoop::Guard {
 public:
    explicit Guard(LoginLoop& loop) : loop_(loop) { loop_.procedure_.emplace(loop_.state_); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() {
        if (clean_up) loop_.CleanUp();
        loop_.procedure_.reset();
    }

    bool clean_up = false;

 private:
    LoginLoop& loop_;
};

LoginLoop::LoginLoop(ClientState& state, bool interactive, std::string_view name, std::int32_t unexpected)
    : state_(state), attendant_(MakeAttendant(interactive, state)), name_(name), unexpected_(unexpected) {}

bool LoginLoop::Run() {
    Guard guard(*this);
    LoginStates state = Begin();
    trace_.emplace(state_, name_);
    guard.clean_up = true;
    try {
        for (auto next = Perform(state); next; next = Perform(state))
            state = *next;
    } catch (const UserGaveUp&) {
        return false;
    }
    guard.clean_up = false;
    return state == lsFinish;
}

std::optional<LoginStates> LoginLoop::Perform(LoginStates state) {
    trace_->Begin(state);
    try {
        procedure_->CheckTermination();
        const auto next = StepOrMeet(state);
        trace_->End(next ? NameOf(*next) : "ended", procedure_->TakeErrors());
        return next;
    } catch (...) {
        trace_->End(OutcomeOf(std::current_exception()), procedure_->TakeErrors());
        throw;
    }
}

std::optional<LoginStates> LoginLoop::StepOrMeet(LoginStates state) {
    try {
        return Step(state);
    } catch (const Error& error) {
        procedure_->CheckTermination();
        attendant_->HideWait();
        const LoginStates next = attendant_->MeetUnexpected(unexpected_, error);
        procedure_->Note(error.Number());
        return next;
    }
}

LoginStates LoginLoop::Meet(LoginFailure failure, const Args& question, const Args& error) {
    procedure_->CheckTermination();
    attendant_->HideWait();
    met_ = failure;
    const LoginStates next = attendant_->Meet(failure, question, error);
    if (RuleOf(failure).error != 0) procedure_->Note(RuleOf(failure).error);
    return next;
}

// An error is on its way out already, or the user has given up: another error is only reported.
void LoginLoop::CleanUp() noexcept {
    try {
        trace_->Begin(lsFailed);
        Step(lsFailed);
        trace_->End("ended", {});
    } catch (...) {
        ReportStrayException(std::current_exception());
    }
}

}  // namespace kq
