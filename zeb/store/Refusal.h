// Every refusal of the login server: the number that programs act on, the code that clients translate (empty
// when there is none) and the English sentence. README.md shows the same list to operators.
//
// 7721, 7722 and 7790 are numbers that every client knows. The password codes continue the rule that joins
// 7721 to "ZEBError-132": the number is 7589 more than the code. The rest are this server's own. A number
// that is no longer used is not given away again.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kq::zeb {

#define KQ_ZEB_REFUSALS(X)                                                                    \
    X(SamePassword, 7719, "ZEBError-130", "New Password must be Different from Old Password") \
    X(MalformedPassword, 7720, "ZEBError-131", "Malformed Password")                          \
    X(UnknownUser, 7721, "ZEBError-132", "Unknown User/Password")                             \
    X(MustChangePassword, 7722, "", "The password must be changed before logging in.")        \
    X(TooManySessions, 7790, "", "The user has reached the maximum number of sessions.")      \
    X(PasswordLength, 7890, "ZEBError-301", "Invalid Length for Password")                    \
    X(PasswordCharacter, 7891, "ZEBError-302", "Illegal Character in Password")               \
    X(PasswordIsLogin, 7894, "ZEBError-305", "Password Must Differ from Login ID")            \
    X(Disabled, 7601, "", "The account is disabled.")                                         \
    X(TooManyAttempts, 7602, "", "Too many failed attempts. Please try again later.")         \
    X(Busy, 7603, "", "The login server is busy. Please try again.")                          \
    X(NoServer, 7604, "", "No application server is available for this application.")         \
    X(NoSession, 7605, "", "The session is unknown or has expired. Please log in again.")     \
    X(BadProfiles, 7606, "", "The profiles could not be read.")                               \
    X(NoClientPackage, 7607, "", "No client is available for download.")                      \
    X(UnknownMessage, 7608, "", "The login server does not know this message.")               \
    X(Failed, 7609, "", "The login server could not answer this request.")                    \
    X(ProfilesTooLarge, 7610, "", "The user's profiles are too large.")                       \
    X(FieldTooLong, 7611, "", "A field of the request is too long.")

enum class Refusal : std::int32_t {
    None = 0,
#define X(name, number, param, text) name = (number),
    KQ_ZEB_REFUSALS(X)
#undef X
};

constexpr std::int32_t NumberOf(Refusal refusal) {
    return static_cast<std::int32_t>(refusal);
}
// Both are empty for None.
std::string_view CodeOf(Refusal refusal);
std::string_view SentenceOf(Refusal refusal);

}  // namespace kq::zeb
