#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessErrorEnum.h>

#include "tools/kqlogin/ExitCodes.h"

namespace kq {
namespace {

ExitCode ExitCodeOf(NetError error) {
    return kq::ExitCodeOf(static_cast<std::int32_t>(error));
}

TEST(ExitCodes, AMissingAddressIsAMistakeOfUsage) {
    EXPECT_EQ(ExitCode::Usage, kq::ExitCodeOf(kqaserrLoginBadAddr));
}

TEST(ExitCodes, AFailedConnectionIsTheSameForBothServers) {
    EXPECT_EQ(ExitCode::NoConnection, kq::ExitCodeOf(kqaserrLoginNoConnect));
    EXPECT_EQ(ExitCode::NoConnection, kq::ExitCodeOf(kqaserrLoginNoConnectAS));
    EXPECT_EQ(ExitCode::NoConnection, ExitCodeOf(NetError::Refused));
    EXPECT_EQ(ExitCode::NoConnection, ExitCodeOf(NetError::HostNotFound));
}

TEST(ExitCodes, AMissingReplyIsNoReply) {
    EXPECT_EQ(ExitCode::NoReply, kq::ExitCodeOf(kqaserrLoginNoValidate));
    EXPECT_EQ(ExitCode::NoReply, kq::ExitCodeOf(kqaserrLoginNoLogin));
    EXPECT_EQ(ExitCode::NoReply, ExitCodeOf(NetError::TimedOut));
}

TEST(ExitCodes, ARefusedLoginIsRefused) {
    for (const auto error : {kqaserrLoginBadLogin, kqaserrLoginLoginFailed, kqaserrLoginTooManyUsers}) {
        EXPECT_EQ(ExitCode::Refused, kq::ExitCodeOf(error)) << error;
    }
}

TEST(ExitCodes, APasswordThatMustBeChangedHasItsOwnCode) {
    EXPECT_EQ(ExitCode::PasswordChange, kq::ExitCodeOf(kqaserrLoginBadPassword));
}

TEST(ExitCodes, RefusedValidationsAreAboutVersions) {
    for (const auto error :
         {kqaserrLoginValidationFailed, kqaserrLoginInvalidLoginVersion, kqaserrLoginInvalidIntfVersion}) {
        EXPECT_EQ(ExitCode::Version, kq::ExitCodeOf(error)) << error;
    }
}

TEST(ExitCodes, RegistrationHasItsOwnCode) {
    EXPECT_EQ(ExitCode::Registration, kq::ExitCodeOf(kqaserrLoginNoRegister));
    EXPECT_EQ(ExitCode::Registration, kq::ExitCodeOf(kqaserrLoginRegisterFailed));
}

TEST(ExitCodes, EverythingElseIsOther) {
    EXPECT_EQ(ExitCode::Other, kq::ExitCodeOf(NumberOf(RuntimeError::Overflow)));
    EXPECT_EQ(ExitCode::Other, kq::ExitCodeOf(kqaserrLoginNoTranslate));
    EXPECT_EQ(ExitCode::Other, kq::ExitCodeOf(0));
}

TEST(ExitCodes, TheHelpListsEveryCode) {
    const std::string help = ExitCodeHelp();
    for (const char* code : {"    0  ", "    2  ", "    3  ", "    4  ", "    5  ", "    6  ", "    7  ",
                             "    8  ", "    9  ", "  128  "}) {
        EXPECT_NE(std::string::npos, help.find(code)) << code;
    }
}

}  // namespace
}  // namespace kq
