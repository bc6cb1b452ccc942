// kqlogin's exit codes: one for each kind of failure that a script would handle differently.
#pragma once

#include <string>

#include <kqappsession/Error.h>

namespace kq {

// X(name, code, meaning): the rows of --help. Codes are never reused.
#define KQ_EXIT_CODES(X)                                                             \
    X(Ok, 0, "done")                                                                 \
    X(Output, 1, "standard output could not be written")                             \
    X(Usage, 2, "invalid command line, settings file or password line")              \
    X(NoConnection, 3, "no connection to the login or application server")           \
    X(NoReply, 4, "no reply: time-out or lost connection")                           \
    X(Refused, 5, "login refused: login id, password, account or too many sessions") \
    X(PasswordChange, 6, "the password must be changed first")                       \
    X(Version, 7, "client or interface version not supported, client not valid")     \
    X(Registration, 8, "the application server refused to register the session")     \
    X(Other, 9, "any other failure")                                                 \
    X(GivenUp, 10, "the user gave up (--tty)")                                       \
    X(ServerFailure, 11, "server busy, failed or invalid reply; try again later")    \
    X(SettingsFile, 12, "the settings file could not be written (--save-settings)")  \
    X(Signal, 128, "plus the signal's number: ended by a signal")

enum class ExitCode : int {
#define KQ_X(name, code, meaning) name = code,
    KQ_EXIT_CODES(KQ_X)
#undef KQ_X
};

ExitCode ExitCodeOf(const Error& error);
// One line for each code, for --help.
std::string ExitCodeHelp();

}  // namespace kq
