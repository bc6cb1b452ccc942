// What can go wrong in a login, and what then: one row for each failure.
//
// The steps of the procedures name a failure and its arguments; whether that becomes a question to a user or
// an error is the attendant's business, by the row. The asymmetries of the system are rows, not branches.
#pragma once

#include <cstdint>

#include <kqappsession/Error.h>

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
    ErrorCause cause;    // of that error
    LoginStates yes;
    LoginStates no;
    LoginStates cancel;
};

// X(failure, text, question, silent error, its cause, Yes, No, Cancel)
#define KQ_LOGIN_FAILURES(X)                                                                                 \
    X(NoConnect, 411, YesNo, kqaserrLoginNoConnect, NoConnection, lsGetLoginInfo, lsFailed, lsFailed)        \
    X(NoValidateReply, 416, YesNo, kqaserrLoginNoValidate, NoReply, lsGetLoginInfo, lsFailed, lsFailed)      \
    X(ValidationFailed, 417, YesNo, kqaserrLoginValidationFailed, Version, lsGetLoginInfo, lsFailed,         \
      lsFailed)                                                                                              \
    X(ValidationServerFailed, 417, YesNo, kqaserrLoginValidationFailed, ServerFailure, lsGetLoginInfo,       \
      lsFailed, lsFailed)                                                                                    \
    X(NewClient, 418, YesNo, 0, Other, lsCheckClientDownload, lsCheckValidZEBInterface,                      \
      lsCheckValidZEBInterface)                                                                              \
    X(ClientTooOld, 419, Information, kqaserrLoginInvalidLoginVersion, Version, lsFailed, lsFailed,          \
      lsFailed)                                                                                              \
    X(ClientTooOldNewOne, 420, YesNo, kqaserrLoginInvalidLoginVersion, Version, lsCheckClientDownload,       \
      lsFailed, lsFailed)                                                                                    \
    X(NoServers, 421, Information, kqaserrLoginInvalidIntfVersion, Version, lsFailed, lsFailed, lsFailed)    \
    X(NoServersNewClient, 422, YesNo, kqaserrLoginInvalidIntfVersion, Version, lsCheckClientDownload,        \
      lsFailed, lsFailed)                                                                                    \
    /* A login without a reply is reported as a bad login, not as kqaserrLoginNoLogin. */                    \
    X(NoLoginReply, 401, YesNo, kqaserrLoginBadLogin, NoReply, lsGetLoginInfo, lsFailed, lsFailed)           \
    X(LoginFailed, 403, YesNo, kqaserrLoginLoginFailed, Credentials, lsGetLoginInfo, lsFailed, lsFailed)     \
    X(LoginServerFailed, 403, YesNo, kqaserrLoginLoginFailed, ServerFailure, lsGetLoginInfo, lsFailed,       \
      lsFailed)                                                                                              \
    /* Shown with the text of a failed validation. */                                                        \
    X(TooManyUsers, 417, YesNo, kqaserrLoginTooManyUsers, Credentials, lsGetLoginInfo, lsFailed, lsFailed)   \
    X(MustChangePassword, 0, None, kqaserrLoginBadPassword, PasswordChange, lsChangePassword, lsFailed,      \
      lsFailed)                                                                                              \
    /* The login itself has succeeded: No goes on with it. */                                                \
    X(PasswordExpires, 426, YesNo, kqaserrLoginBadPassword, PasswordChange, lsChangePassword,                \
      lsGetTranslation, lsGetTranslation)                                                                    \
    X(NoTranslation, 405, YesNo, kqaserrLoginNoTranslate, ServerFailure, lsGetLoginInfo, lsFailed, lsFailed) \
    X(NoSessionInfo, 407, YesNo, kqaserrLoginNoSessionInfo, ServerFailure, lsGetLoginInfo, lsFailed,         \
      lsFailed)                                                                                              \
    X(NoConnectAS, 402, YesNoCancel, kqaserrLoginNoConnectAS, NoConnection, lsAttemptConnectServer,          \
      lsGetLoginInfo, lsFailed)                                                                              \
    X(NoRegisterReply, 404, YesNoCancel, kqaserrLoginNoRegister, NoReply, lsAttemptRegister, lsGetLoginInfo, \
      lsFailed)                                                                                              \
    X(RegisterFailed, 408, YesNo, kqaserrLoginRegisterFailed, Registration, lsGetLoginInfo, lsFailed,        \
      lsFailed)

enum class LoginFailure {
#define KQ_X(name, text, question, error, cause, yes, no, cancel) name,
    KQ_LOGIN_FAILURES(KQ_X)
#undef KQ_X
};

const FailureRule& RuleOf(LoginFailure failure);

}  // namespace kq
