// The one exception type of the library.
//
// A kq::Error has four parts: a number, the source that reports it, a description for the user, and its
// cause. The number is an automation code (negative as a signed 32-bit integer) or, for errors of
// connections, Winsock's positive number. A user's "no" is never an error; it is a result.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include <kqappsession/Export.h>

namespace kq {

// The source of every error that the login and session procedures raise.
inline constexpr std::string_view kLibrarySource = "KQAppSessionLib";

// What is behind an error. The number alone does not always show it: kqaserrLoginBadLogin is raised for a
// missing password and for a login server that does not reply. X(name, meaning)
#define KQ_ERROR_CAUSES(X)                                                                            \
    X(Other, "none of the following, or not known")                                                   \
    X(Arguments, "an argument or a stored setting is missing or wrong")                               \
    X(NoConnection, "the server was not reached, or the connection to it was lost")                   \
    X(NoReply, "the server was reached, but its reply did not come")                                  \
    X(ServerFailure, "the server could not do its work, or its reply was not valid; try again later") \
    X(Credentials, "login id or password are wrong, the account is disabled, too many sessions")      \
    X(PasswordChange, "the password must be changed first")                                           \
    X(Version, "the server does not serve this client or this interface version")                     \
    X(Registration, "the application server refused to register the session")                         \
    X(SettingsFile, "the settings file could not be written")

enum class ErrorCause : std::int32_t {
#define KQ_X(name, meaning) name,
    KQ_ERROR_CAUSES(KQ_X)
#undef KQ_X
};
// The name as it is written above, such as "NoReply".
KQ_EXPORT const char* NameOf(ErrorCause cause);

// The cause that follows from a number alone: NoReply for NetError::TimedOut, NoConnection for the numbers of
// a connection that failed or was lost, otherwise Other.
KQ_EXPORT ErrorCause CauseOf(std::int32_t number);

class KQ_EXPORT Error : public std::exception {
 public:
    // The cause is CauseOf(number).
    Error(std::int32_t number, std::string source, std::string description)
        : Error(number, std::move(source), std::move(description), CauseOf(number)) {}
    Error(std::int32_t number, std::string source, std::string description, ErrorCause cause)
        : number_(number), cause_(cause), source_(std::move(source)), description_(std::move(description)) {}

    std::int32_t Number() const { return number_; }
    ErrorCause Cause() const { return cause_; }
    const std::string& Source() const { return source_; }
    const std::string& Description() const { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

 private:
    std::int32_t number_;
    ErrorCause cause_;
    std::string source_;
    std::string description_;
};

// Errors of the automation run time. The number of an Error made from one is 0x800A0000 plus the value here.
enum class RuntimeError : std::int32_t {
    InvalidProcedureCall = 5,  // "Invalid procedure call or argument"
    Overflow = 6,              // "Overflow"
    TypeMismatch = 13,         // "Type mismatch"
    PathFileAccess = 75,       // "Path/File access error"
    ObjectNotSet = 91,         // "Object variable or With block variable not set"
    ResourceNotFound = 326,    // "Resource with identifier not found"
    DuplicateKey = 457,        // "This key is already associated with an element of this collection"
};

// The automation code of a run-time error, for comparison with Error::Number.
constexpr std::int32_t NumberOf(RuntimeError error) {
    return static_cast<std::int32_t>(0x800A0000U + static_cast<std::uint32_t>(error));
}

// Raises the run-time error with its usual English description or, if it is not empty, with `description`.
// The source is kLibrarySource.
[[noreturn]] KQ_EXPORT void Raise(RuntimeError error, std::string_view description = {},
                                  ErrorCause cause = ErrorCause::Other);

// Errors of connections carry Winsock's numbers on every platform.
enum class NetError : std::int32_t {
    Interrupted = 10004,
    AccessDenied = 10013,
    InvalidArgument = 10022,
    MessageTooLong = 10040,
    AddressInUse = 10048,
    AddressNotAvailable = 10049,
    NetworkUnreachable = 10051,
    ConnectionAborted = 10053,
    ConnectionReset = 10054,
    NoBufferSpace = 10055,
    NotConnected = 10057,
    TimedOut = 10060,
    Refused = 10061,
    HostUnreachable = 10065,
    HostNotFound = 11001,
};

// The English description of a Winsock number, such as "The connection was refused". It has no full stop, so
// that it can end another sentence. The description of an unknown number names the number.
KQ_EXPORT std::string NetErrorText(std::int32_t number);

// Raises an Error with the Winsock number itself (a positive number), the given source, and the number's
// description or, if it is not empty, `description`.
[[noreturn]] KQ_EXPORT void Raise(NetError error, std::string_view source, std::string_view description = {});

}  // namespace kq
