// What can go wrong in a login, and what then: one row for each failure.
//
// The steps of the procedures name a failure and its arguments; whether that becomes a question to a user or
// an error is the attendant's business, by the row. The asymmetries of the system are rows, not branches.
#pragma once

#include <cstdint>

#include "client/LoginStates.h"

namespace kq {

enum class Question {
    None,         // nothing is asked: the answer is Yes
    Information,  // a statement with OK: the answer is No
    YesNo,
    YesNoCancel,
};

struct FailureRule {
    std::int32_t text;  // of the question; 0 when nothing is asked
    Question question;
    std::int32_t error;  // raised in a silent procedure; 0: the procedure goes on as for No
    LoginStates yes;
    LoginStates no;
    LoginStates cancel;
};

// X(failure, text, question, silent error, Yes, No, Cancel)
#define KQ_LOGIN_FAILURES(X)                                                                               \
    X(NoConnect, 411, YesNo, kqaserrLoginNoConnect, lsGetLoginInfo, lsFailed, lsFailed)                    \
    X(NoValidateReply, 416, YesNo, kqaserrLoginNoValidate, lsGetLoginInfo, lsFailed, lsFailed)             \
    X(ValidationFailed, 417, YesNo, kqaserrLoginValidationFailed, lsGetLoginInfo, lsFailed, lsFailed)      \
    X(NewClient, 418, YesNo, 0, lsCheckClientDownload, lsCheckValidZEBInterface, lsCheckValidZEBInterface) \
    X(ClientTooOld, 419, Information, kqaserrLoginInvalidLoginVersion, lsFailed, lsFailed, lsFailed)       \
    X(ClientTooOldNewOne, 420, YesNo, kqaserrLoginInvalidLoginVersion, lsCheckClientDownload, lsFailed,    \
      lsFailed)                                                                                            \
    X(NoServers, 421, Information, kqaserrLoginInvalidIntfVersion, lsFailed, lsFailed, lsFailed)           \
    X(NoServersNewClient, 422, YesNo, kqaserrLoginInvalidIntfVersion, lsCheckClientDownload, lsFailed,     \
      lsFailed)                                                                                            \
    /* A login without a reply is reported as a bad login, not as kqaserrLoginNoLogin. */                  \
    X(NoLoginReply, 401, YesNo, kqaserrLoginBadLogin, lsGetLoginInfo, lsFailed, lsFailed)                  \
    X(LoginFailed, 403, YesNo, kqaserrLoginLoginFailed, lsGetLoginInfo, lsFailed, lsFailed)                \
    /* Shown with the text of a failed validation. */                                                      \
    X(TooManyUsers, 417, YesNo, kqaserrLoginTooManyUsers, lsGetLoginInfo, lsFailed, lsFailed)              \
    X(MustChangePassword, 0, None, kqaserrLoginBadPassword, lsChangePassword, lsFailed, lsFailed)          \
    /* The login itself has succeeded: No goes on with it. */                                              \
    X(PasswordExpires, 426, YesNo, kqaserrLoginBadPassword, lsChangePassword, lsGetTranslation,            \
      lsGetTranslation)                                                                                    \
    X(NoTranslation, 405, YesNo, kqaserrLoginNoTranslate, lsGetLoginInfo, lsFailed, lsFailed)              \
    X(NoSessionInfo, 407, YesNo, kqaserrLoginNoSessionInfo, lsGetLoginInfo, lsFailed, lsFailed)            \
    X(NoConnectAS, 402, YesNoCancel, kqaserrLoginNoConnectAS, lsAttemptConnectServer, lsGetLoginInfo,      \
      lsFailed)                                                                                            \
    X(NoRegisterReply, 404, YesNoCancel, kqaserrLoginNoRegister, lsAttemptRegister, lsGetLoginInfo,        \
      lsFailed)                                                                                            \
    X(RegisterFailed, 408, YesNo, kqaserrLoginRegisterFailed, lsGetLoginInfo, lsFailed, lsFailed)

enum class LoginFailure {
#define KQ_X(name, text, question, error, yes, no, cancel) name,
    KQ_LOGIN_FAILURES(KQ_X)
#undef KQ_X
};

const FailureRule& RuleOf(LoginFailure failure);

}  // namespace kq
