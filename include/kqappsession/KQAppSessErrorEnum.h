// The error codes of the login and session procedures. The text id of a code is code - 0x80040A00 + 1000.
//
// A code is raised by the silent form of the procedures that its row names. %0%, %1% and so on are the values
// that its text contains. Interactive procedures ask their user instead. Several failures share a code;
// Error::Cause distinguishes them.
#pragma once

#include <cstdint>

namespace kq {

// X(name, code): one row for each code; numbers are never reused.
#define KQ_APPSESS_ERRORS(X)                                                        \
    /* KQAppSessServer before Initialize */                                         \
    X(kqaserrNotInitialized, 0x80040A01U)                                           \
    /* KQAppSessServer::Listen while listening; %0% the port */                     \
    X(kqaserrAlreadyConnected, 0x80040A02U)                                         \
    /* KQAppSessServer::Initialize: interface versions of no known form */          \
    X(kqaserrInvalidInterfaces, 0x80040A03U)                                        \
    /* SystemLogin, UpdateProfilesEx: %0% address, %1% port, %2% time-out */        \
    X(kqaserrLoginBadAddr, 0x80040A04U)                                             \
    /* SystemLogin: %0% login id or %1% password is empty; also no reply to the     \
       login request (%1% is empty; Cause is NoReply) */                            \
    X(kqaserrLoginBadLogin, 0x80040A05U)                                            \
    /* SystemLogin, UpdateProfilesEx: no connection to the login server; %0% why */ \
    X(kqaserrLoginNoConnect, 0x80040A06U)                                           \
    /* SystemLogin: no reply to the validation request; %0% why */                  \
    X(kqaserrLoginNoValidate, 0x80040A07U)                                          \
    /* SystemLogin: validation refused, or its reply is not valid; %0% why */       \
    X(kqaserrLoginValidationFailed, 0x80040A08U)                                    \
    /* SystemLogin: the password must be changed first, or expires */               \
    X(kqaserrLoginBadPassword, 0x80040A09U)                                         \
    /* SystemLogin: the login server wants a newer client */                        \
    X(kqaserrLoginInvalidLoginVersion, 0x80040A0AU)                                 \
    /* SystemLogin: no application server for this interface */                     \
    X(kqaserrLoginInvalidIntfVersion, 0x80040A0BU)                                  \
    /* never raised: see kqaserrLoginBadLogin; a server refuses with it */          \
    X(kqaserrLoginNoLogin, 0x80040A0CU)                                             \
    /* SystemLogin: login refused, or its reply is not valid; %0% why */            \
    X(kqaserrLoginLoginFailed, 0x80040A0DU)                                         \
    /* SystemLogin: no translation table in the reply */                            \
    X(kqaserrLoginNoTranslate, 0x80040A0EU)                                         \
    /* SystemLogin: no session record in the reply */                               \
    X(kqaserrLoginNoSessionInfo, 0x80040A0FU)                                       \
    /* ServerLogin: no connection to the application server */                      \
    X(kqaserrLoginNoConnectAS, 0x80040A10U)                                         \
    /* ServerLogin: no reply to the registration */                                 \
    X(kqaserrLoginNoRegister, 0x80040A11U)                                          \
    /* ServerLogin: registration refused, or its reply is not valid; %0% why */     \
    X(kqaserrLoginRegisterFailed, 0x80040A12U)                                      \
    /* SetSystemConnectState, ChangeConfiguration: no session record yet */         \
    X(kqaserrLoginSessionRequired, 0x80040A13U)                                     \
    /* SystemLogin: too many sessions; %0% the user */                              \
    X(kqaserrLoginTooManyUsers, 0x80040A14U)                                        \
    /* never raised: a failed password change is a question to the user */          \
    X(kqaserrPasswordChangeFailed, 0x80040A15U)                                     \
    /* ServerLogin before a system login */                                         \
    X(kqaserrLoginNoSystem, 0x80040A63U)

enum KQAppSessErrorEnum : std::int32_t {
#define KQ_X(name, code) name = static_cast<std::int32_t>(code),
    KQ_APPSESS_ERRORS(KQ_X)
#undef KQ_X
};

}  // namespace kq
