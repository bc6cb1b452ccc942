// Exit codes by the cause of an error: one number may mean a wrong password or a login server that is busy.
#include "tools/kqlogin/ExitCodes.h"

namespace kq {

ExitCode ExitCodeOf(const Error& error) {
    switch (error.Cause()) {
        case ErrorCause::Arguments:
            return ExitCode::Usage;
        case ErrorCause::NoConnection:
            return ExitCode::NoConnection;
        case ErrorCause::NoReply:
            return ExitCode::NoReply;
        case ErrorCause::Credentials:
            return ExitCode::Refused;
        case ErrorCause::PasswordChange:
            return ExitCode::PasswordChange;
        case ErrorCause::Version:
            return ExitCode::Version;
        case ErrorCause::Registration:
            return ExitCode::Registration;
        case ErrorCause::ServerFailure:
            return ExitCode::ServerFailure;
        case ErrorCause::SettingsFile:
            return ExitCode::SettingsFile;
        case ErrorCause::Other:
            break;
    }
    return ExitCode::Other;
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
