// The error codes of the login and session procedures. The text id of a code is code - 0x80040A00 + 1000.
#pragma once

#include <cstdint>

namespace kq {

// X(name, code): one row for each code; numbers are never used again for something else.
#define KQ_APPSESS_ERRORS(X)                                                                         \
    X(kqaserrNotInitialized, 0x80040A01U)           /* an object is used before Initialize */        \
    X(kqaserrAlreadyConnected, 0x80040A02U)         /* Listen while listening; %0% the port */       \
    X(kqaserrInvalidInterfaces, 0x80040A03U)        /* interface versions of no known form */        \
    X(kqaserrLoginBadAddr, 0x80040A04U)             /* %0% address, %1% port, %2% time-out */        \
    X(kqaserrLoginBadLogin, 0x80040A05U)            /* %0% login id, %1% password */                 \
    X(kqaserrLoginNoConnect, 0x80040A06U)           /* no connection to the login server; %0% why */ \
    X(kqaserrLoginNoValidate, 0x80040A07U)          /* no validation reply; %0% why */               \
    X(kqaserrLoginValidationFailed, 0x80040A08U)    /* validation refused; %0% why */                \
    X(kqaserrLoginBadPassword, 0x80040A09U)         /* the password must be changed first */         \
    X(kqaserrLoginInvalidLoginVersion, 0x80040A0AU) /* the login server wants a newer client */      \
    X(kqaserrLoginInvalidIntfVersion, 0x80040A0BU)  /* no application server for this interface */   \
    X(kqaserrLoginNoLogin, 0x80040A0CU)             /* no login reply; %0% why */                    \
    X(kqaserrLoginLoginFailed, 0x80040A0DU)         /* login refused; %0% why */                     \
    X(kqaserrLoginNoTranslate, 0x80040A0EU)         /* no translation table in the reply */          \
    X(kqaserrLoginNoSessionInfo, 0x80040A0FU)       /* no session record in the reply */             \
    X(kqaserrLoginNoConnectAS, 0x80040A10U)         /* no connection to the application server */    \
    X(kqaserrLoginNoRegister, 0x80040A11U)          /* no registration reply */                      \
    X(kqaserrLoginRegisterFailed, 0x80040A12U)      /* registration refused; %0% why */              \
    X(kqaserrLoginSessionRequired, 0x80040A13U)     /* no session record yet */                      \
    X(kqaserrLoginTooManyUsers, 0x80040A14U)        /* too many sessions; %0% the user */            \
    X(kqaserrPasswordChangeFailed, 0x80040A15U)     /* password not changed; %0% why */              \
    X(kqaserrLoginNoSystem, 0x80040A63U)            /* server login before a system login */

enum KQAppSessErrorEnum : std::int32_t {
#define KQ_X(name, code) name = static_cast<std::int32_t>(code),
    KQ_APPSESS_ERRORS(KQ_X)
#undef KQ_X
};

}  // namespace kq
