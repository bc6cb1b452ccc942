// The errors of the login and session procedures: their codes, their texts, how they are raised, and what
// becomes of the login server's own codes.
#include <limits>

#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"

namespace kq {
namespace {

struct Row {
    std::int32_t code;
    std::int32_t decimal;
    std::int32_t text_id;
    const char* text;
};

constexpr Row kErrors[] = {
    {kqaserrNotInitialized, -2147218943, 1001, "Must initialize before using this object."},
    {kqaserrAlreadyConnected, -2147218942, 1002,
     "Listener is already connected on port %0%.  Please disconnect before attempting to connect again."},
    {kqaserrInvalidInterfaces, -2147218941, 1003,
     "Invalid interfaces were specified.  Must be a collection, comma- or pipe-separated string, string or "
     "variant "
     "array, or collection."},
    {kqaserrLoginBadAddr, -2147218940, 1004,
     "Invalid address (%0%), port (%1%), or timeout value (%2%) was specified."},
    {kqaserrLoginBadLogin, -2147218939, 1005, "Invalid login ID (%0%) or password (%1%) was specified."},
    {kqaserrLoginNoConnect, -2147218938, 1006, "Could not connect to login server: %0%."},
    {kqaserrLoginNoValidate, -2147218937, 1007,
     "Did not receive a validation reply from the login server: %0%."},
    {kqaserrLoginValidationFailed, -2147218936, 1008, "Validation failed: %0%."},
    {kqaserrLoginBadPassword, -2147218935, 1009, "Password must be changed before login may be completed."},
    {kqaserrLoginInvalidLoginVersion, -2147218934, 1010,
     "The login server does not support this client.  A new client version is required."},
    {kqaserrLoginInvalidIntfVersion, -2147218933, 1011, "No servers available for this client."},
    {kqaserrLoginNoLogin, -2147218932, 1012, "Did not receive a reply from the login server: %0%."},
    {kqaserrLoginLoginFailed, -2147218931, 1013, "Login failed: %0%."},
    {kqaserrLoginNoTranslate, -2147218930, 1014,
     "The translation table was not found in the response from the Login Server."},
    {kqaserrLoginNoSessionInfo, -2147218929, 1015,
     "Session information was not returned properly by the login."},
    {kqaserrLoginNoConnectAS, -2147218928, 1016, "Could not connect to the application server."},
    {kqaserrLoginNoRegister, -2147218927, 1017, "Could not register with the application server."},
    {kqaserrLoginRegisterFailed, -2147218926, 1018, "Registration failed:  %0%."},
    {kqaserrLoginSessionRequired, -2147218925, 1019,
     "No session info is present.  Either perform a system login or call SetSystemLoginState before calling "
     "this "
     "method."},
    {kqaserrLoginTooManyUsers, -2147218924, 1020,
     "Too many concurrent sessions for user %0%.  Please close any unneeded sessions."},
    {kqaserrPasswordChangeFailed, -2147218923, 1021, "Password Change Failure:  %0%"},
    {kqaserrLoginNoSystem, -2147218845, 1099,
     "A system login must be performed before a server login, or the proper state must first be set."},
};

struct ErrorText : testing::Test {
    std::int32_t NumberRaisedFor(std::int32_t code) {
        return ErrorOf([&] { messages.GetASErrorText(code); }).Number();
    }

    EnglishMachine machine;
    Texts messages{machine.platform};
};

TEST_F(ErrorText, HasARowInThisTestForEveryCode) {
    std::vector<std::int32_t> listed;
#define KQ_X(name, code) listed.push_back(name);
    KQ_APPSESS_ERRORS(KQ_X)
#undef KQ_X
    std::vector<std::int32_t> tested;
    for (const auto& row : kErrors)
        tested.push_back(row.code);
    EXPECT_EQ(listed, tested);
}

TEST_F(ErrorText, BelongsToTheNumberThatEveryCodeHas) {
    for (const auto& row : kErrors) {
        EXPECT_EQ(row.code, row.decimal);
        EXPECT_EQ(messages.LoadText(row.text_id), row.text);
        EXPECT_EQ(messages.GetASErrorText(row.code), row.text);
    }
}

TEST_F(ErrorText, TakesItsArguments) {
    EXPECT_EQ(messages.GetASErrorText(kqaserrLoginBadAddr, {"zeb", "0", "10000"}),
              "Invalid address (zeb), port (0), or timeout value (10000) was specified.");
}

TEST_F(ErrorText, IsRaisedWithItsNumberAndTheLibrarysName) {
    const Error error = ErrorOf([&] { messages.RaiseASError(kqaserrLoginSessionRequired); });
    EXPECT_EQ(error.Number(), -2147218925);
    EXPECT_EQ(error.Source(), "KQAppSessionLib");
    EXPECT_EQ(error.Description(), messages.LoadText(1019));
}

TEST_F(ErrorText, IsRaisedWithItsArguments) {
    const Error error = ErrorOf([&] { messages.RaiseASError(kqaserrAlreadyConnected, {"7000"}); });
    EXPECT_EQ(
        error.Description(),
        "Listener is already connected on port 7000.  Please disconnect before attempting to connect again.");
}

TEST_F(ErrorText, StandsApartForAMissingSystemLogin) {
    const Error error = ErrorOf([&] { messages.RaiseASError(kqaserrLoginNoSystem); });
    EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x80040A63U));
    EXPECT_EQ(error.Description(), messages.LoadText(1099));
}

TEST_F(ErrorText, IsOneOfItsOwnForTheCodeBelowTheFirst) {
    EXPECT_EQ(messages.GetASErrorText(static_cast<std::int32_t>(0x80040A00U), {"7"}), "Unknown error 7");
}

TEST_F(ErrorText, IsNotFoundForCodesInTheGap) {
    for (std::int32_t code = kqaserrPasswordChangeFailed + 1; code < kqaserrLoginNoSystem; ++code)
        EXPECT_EQ(NumberRaisedFor(code), NumberOf(RuntimeError::ResourceNotFound));
}

TEST_F(ErrorText, IsNotFoundForCodesOutsideTheTable) {
    EXPECT_EQ(NumberRaisedFor(static_cast<std::int32_t>(0x800409FFU)),
              NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_EQ(NumberRaisedFor(kqaserrLoginNoSystem + 1), NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_EQ(NumberRaisedFor(0), NumberOf(RuntimeError::ResourceNotFound));
}

TEST_F(ErrorText, IsReplacedByNotFoundWhenACodeWithoutOneIsRaised) {
    const Error error = ErrorOf([&] { messages.RaiseASError(0, {"x"}); });
    EXPECT_EQ(error.Number(), NumberOf(RuntimeError::ResourceNotFound));
}

TEST_F(ErrorText, OverflowsWhereItsNumberDoes) {
    constexpr std::int32_t kLastWithANumber = 263'703;  // its text would be 2147483647
    EXPECT_EQ(NumberRaisedFor(kLastWithANumber), NumberOf(RuntimeError::ResourceNotFound));
    EXPECT_EQ(NumberRaisedFor(kLastWithANumber + 1), NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(NumberRaisedFor(std::numeric_limits<std::int32_t>::max()), NumberOf(RuntimeError::Overflow));
    EXPECT_EQ(NumberRaisedFor(std::numeric_limits<std::int32_t>::min()),
              NumberOf(RuntimeError::ResourceNotFound));
}

using ZEBErrorText = ErrorText;

TEST_F(ZEBErrorText, IsKnownForEveryPasswordCode) {
    const std::pair<const char*, const char*> known[] = {
        {"ZEBError-130", "New Password must be Different from Old Password"},
        {"ZEBError-131", "Malformed Password"},
        {"ZEBError-132", "Unknown User/Password"},
        {"ZEBError-301", "Invalid Length for Password"},
        {"ZEBError-302", "Illegal Character in Password"},
        {"ZEBError-303", "Too Many Repeating Characters in Password"},
        {"ZEBError-304", "Insufficient Mix of Character Types in Password"},
        {"ZEBError-305", "Password Must Differ from Login ID"},
        {"ZEBError-306", "Password cannot be Reused"},
    };
    for (const auto& [code, text] : known)
        EXPECT_EQ(messages.MapZEBError(code), text);
}

TEST_F(ZEBErrorText, IsAnythingElseUnchanged) {
    for (const char* text : {"zeberror-132", "ZEBError-133", "ZEBError-132 ", "Account locked", ""})
        EXPECT_EQ(messages.MapZEBError(text), text);
}

}  // namespace
}  // namespace kq
