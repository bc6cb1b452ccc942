// What drives a login procedure through its states: checks that the client still wants it, runs the step,
// records it, meets what no step expects, and leaves nothing half done.
//
// A procedure is a class above this one. It has one step for each of its states, written in the order of a
// successful login; a step returns the next state. Steps know neither mode nor dialogs: they put failures and
// questions to the attendant.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "client/LoginTrace.h"

namespace kq {

class LoginLoop {
 public:
    LoginLoop(const LoginLoop&) = delete;
    LoginLoop& operator=(const LoginLoop&) = delete;

    // True when the procedure has ended with lsFinish. Every failure of a silent one, and what no step
    // expects, is raised after the work of lsFailed is done.
    bool Run();

 protected:
    // `name`: the procedure's in the trace. `unexpected`: the text that asks about an error that no step
    // expects.
    LoginLoop(ClientState& state, bool interactive, std::string_view name, std::int32_t unexpected);
    virtual ~LoginLoop() = default;

    // Checks and prepares, opens the settings; the first state. It raises before it changes anything.
    virtual LoginStates Begin() = 0;
    // The work of a state: the state that follows, nothing at the end of the procedure.
    virtual std::optional<LoginStates> Step(LoginStates state) = 0;

    // The state that follows a failure.
    LoginStates Meet(LoginFailure failure, const Args& question = {}, const Args& error = {});

    ClientState& state_;
    std::unique_ptr<LoginAttendant> attendant_;
    std::optional<Procedure> procedure_;  // while it runs
    LoginFailure met_{};                  // the latest failure

 private:
    class Guard;

    std::optional<LoginStates> Perform(LoginStates state);
    std::optional<LoginStates> StepOrMeet(LoginStates state);
    void CleanUp() noexcept;

    std::string_view name_;
    std::int32_t unexpected_;
    std::optional<LoginTrace> trace_;  // from the first step on
};

}  // namespace kq
