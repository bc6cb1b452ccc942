// What is reported of a login's steps: to handlers of the client object and, if the settings file names one
// under "TraceFile", to a file with one line for each step.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/EventLoop.h>

#include "client/LoginStates.h"

namespace kq {

class ClientState;

class LoginTrace {
 public:
    // Of the procedure of this name. The file is that of the settings that are open now. The state outlives
    // the trace.
    LoginTrace(ClientState& state, std::string_view procedure);

    void Begin(LoginStates state);
    // The step that has begun is over. Handlers of the host run inside.
    void End(std::string outcome, std::vector<std::int32_t> errors);

 private:
    ClientState& state_;
    std::string_view procedure_;
    std::string file_;  // empty: none
    LoginStates step_{};
    EventLoop::TimePoint begin_;
};

}  // namespace kq
