// The states of the login procedures, as one list that makes the enum, the names and the table in the docs.
#pragma once

#include <cstdint>

namespace kq {

// X(name, what the state does), in the order of their values from 0. System login: 0 to 11 and 14; server
// login: 4, 5 and 12 to 14.
#define KQ_LOGIN_STATES(X)                                                                           \
    X(lsValidateClient, "asks the login server whether it takes this client")                        \
    X(lsCheckClientDownload, "offers and performs the download of a newer client")                   \
    X(lsCheckValidZEBInterface, "does the login server speak this client's version?")                \
    X(lsCheckValidInterface, "is there an application server for the interface version?")            \
    X(lsGetLoginInfo, "gets address and credentials; in the server login: gives up for a new login") \
    X(lsFailed, "cleans up and ends without success")                                                \
    X(lsAttemptConnectZEB, "connects to the login server")                                           \
    X(lsAttemptLogin, "logs in")                                                                     \
    X(lsChangePassword, "asks for a new password")                                                   \
    X(lsGetTranslation, "takes the translation table from the reply")                                \
    X(lsGetProfile, "takes the profiles, chooses the current one")                                   \
    X(lsGetSessionInfo, "takes the session record from the reply")                                   \
    X(lsAttemptConnectServer, "connects to the application server")                                  \
    X(lsAttemptRegister, "registers the session with the application server")                        \
    X(lsFinish, "records the result and ends with success")

enum class LoginStates : std::int32_t {
#define KQ_X(name, role) name,
    KQ_LOGIN_STATES(KQ_X)
#undef KQ_X
};
using enum LoginStates;

const char* NameOf(LoginStates state);
const char* RoleOf(LoginStates state);

}  // namespace kq
