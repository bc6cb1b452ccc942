// The server login: connects to the application server that the system login named and registers the session.
#pragma once

#include <memory>

#include "client/ClientState.h"
#include "client/LoginAttendant.h"
#include "client/LoginExchange.h"

namespace kq {

class ServerLogin {
 public:
    // kqaserrLoginNoSystem before a system login.
    ServerLogin(ClientState& state, bool interactive);

    // True when the session is registered. Every failure of a silent login, and what no step expects, is
    // raised after the connection was released.
    bool Run();

 private:
    LoginStates Step(LoginStates state);
    LoginStates AttemptConnectServer();
    LoginStates AttemptRegister();
    LoginStates NoReply();
    LoginStates Refused(const Reply& reply);
    void Finish();
    // Everything of the system login goes: a new one is wanted.
    void GiveUpLogin();
    LoginStates Meet(LoginFailure failure, const Args& question = {}, const Args& error = {});

    ClientState& state_;
    Procedure procedure_;
    std::unique_ptr<LoginAttendant> attendant_;
    std::shared_ptr<APClient> connection_;
    int retries_ = 0;
};

}  // namespace kq
