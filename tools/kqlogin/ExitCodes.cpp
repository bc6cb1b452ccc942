// Exit codes by error number. A lost login reply is reported by the library as kqaserrLoginBadLogin, so it
// counts as refused.
#include "tools/kqlogin/ExitCodes.h"

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessErrorEnum.h>

namespace kq {
namespace {

ExitCode ExitCodeOfNet(NetError error) {
    switch (error) {
        case NetError::TimedOut:
            return ExitCode::NoReply;
        case NetError::NetworkUnreachable:
        case NetError::ConnectionAborted:
        case NetError::ConnectionReset:
        case NetError::NotConnected:
        case NetError::Refused:
        case NetError::HostUnreachable:
        case NetError::HostNotFound:
            return ExitCode::NoConnection;
        default:
            return ExitCode::Other;
    }
}

}  // namespace

ExitCode ExitCodeOf(std::int32_t error_number) {
    switch (error_number) {
        case kqaserrLoginBadAddr:
            return ExitCode::Usage;
        case kqaserrLoginNoConnect:
        case kqaserrLoginNoConnectAS:
            return ExitCode::NoConnection;
        case kqaserrLoginNoValidate:
        case kqaserrLoginNoLogin:
            return ExitCode::NoReply;
        case kqaserrLoginBadLogin:
        case kqaserrLoginLoginFailed:
        case kqaserrLoginTooManyUsers:
            return ExitCode::Refused;
        case kqaserrLoginBadPassword:
            return ExitCode::PasswordChange;
        case kqaserrLoginValidationFailed:
        case kqaserrLoginInvalidLoginVersion:
        case kqaserrLoginInvalidIntfVersion:
            return ExitCode::Version;
        case kqaserrLoginNoRegister:
        case kqaserrLoginRegisterFailed:
            return ExitCode::Registration;
        default:
            return ExitCodeOfNet(static_cast<NetError>(error_number));
    }
}

std::string ExitCodeHelp() {
    std::string text = "Exit codes:\n";
    const auto add = [&text](int code, const char* meaning) {
        std::string number = std::to_string(code);
        number.insert(0, 5 - number.size(), ' ');
        text += number + "  " + meaning + "\n";
    };
#define KQ_X(name, code, meaning) add(code, meaning);
    KQ_EXIT_CODES(KQ_X)
#undef KQ_X
    return text;
}

}  // namespace kq
