// The server login: connects to the application server that the system login named and registers the session.
#pragma once

#include <memory>

#include "client/LoginExchange.h"
#include "client/LoginLoop.h"

namespace kq {

class ServerLogin final : public LoginLoop {
 public:
    ServerLogin(ClientState& state, bool interactive);

 private:
    // kqaserrLoginNoSystem before a system login.
    LoginStates Begin() override;
    std::optional<LoginStates> Step(LoginStates state) override;
    LoginStates AttemptConnectServer();
    LoginStates AttemptRegister();
    LoginStates NoReply();
    LoginStates Refused(const Reply<ASRegisterResponse>& reply);
    void Finish();
    // Everything of the system login goes: a new one is wanted.
    void GiveUpLogin();

    std::shared_ptr<APClient> connection_;
    int retries_ = 0;
};

}  // namespace kq
