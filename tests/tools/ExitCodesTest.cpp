#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessErrorEnum.h>

#include "tools/kqlogin/ExitCodes.h"

namespace kq {
namespace {

ExitCode ExitCodeOf(ErrorCause cause, std::int32_t number = kqaserrLoginBadLogin) {
    return kq::ExitCodeOf(Error(number, "", "", cause));
}
ExitCode ExitCodeOf(NetError error) {
    return kq::ExitCodeOf(Error(static_cast<std::int32_t>(error), "", ""));
}

TEST(ExitCodes, FollowTheCauseOfAnErrorWhateverItsNumber) {
    EXPECT_EQ(ExitCode::Usage, ExitCodeOf(ErrorCause::Arguments));
    EXPECT_EQ(ExitCode::NoConnection, ExitCodeOf(ErrorCause::NoConnection));
    EXPECT_EQ(ExitCode::NoReply, ExitCodeOf(ErrorCause::NoReply));
    EXPECT_EQ(ExitCode::Refused, ExitCodeOf(ErrorCause::Credentials));
    EXPECT_EQ(ExitCode::PasswordChange, ExitCodeOf(ErrorCause::PasswordChange));
    EXPECT_EQ(ExitCode::Version, ExitCodeOf(ErrorCause::Version));
    EXPECT_EQ(ExitCode::Registration, ExitCodeOf(ErrorCause::Registration));
    EXPECT_EQ(ExitCode::ServerFailure, ExitCodeOf(ErrorCause::ServerFailure));
    EXPECT_EQ(ExitCode::SettingsFile, ExitCodeOf(ErrorCause::SettingsFile));
    EXPECT_EQ(ExitCode::Other, ExitCodeOf(ErrorCause::Other));
}

TEST(ExitCodes, TellTheErrorsOfConnectionsApart) {
    EXPECT_EQ(ExitCode::NoReply, ExitCodeOf(NetError::TimedOut));
    EXPECT_EQ(ExitCode::NoConnection, ExitCodeOf(NetError::Refused));
    EXPECT_EQ(ExitCode::NoConnection, ExitCodeOf(NetError::ConnectionReset));
    EXPECT_EQ(ExitCode::NoConnection, ExitCodeOf(NetError::HostNotFound));
    EXPECT_EQ(ExitCode::Other, ExitCodeOf(NetError::Interrupted));
}

TEST(ExitCodes, AreOtherForErrorsWithoutACause) {
    EXPECT_EQ(ExitCode::Other, kq::ExitCodeOf(Error(NumberOf(RuntimeError::Overflow), "", "")));
    EXPECT_EQ(ExitCode::Other, kq::ExitCodeOf(Error(kqaserrLoginNoSystem, "", "")));
}

TEST(ExitCodes, TheHelpListsEveryCode) {
    const std::string help = ExitCodeHelp();
    for (const char* code : {"    0  ", "    2  ", "    3  ", "    4  ", "    5  ", "    6  ", "    7  ",
                             "    8  ", "    9  ", "   10  ", "   11  ", "   12  ", "  128  "}) {
        EXPECT_NE(std::string::npos, help.find(code)) << code;
    }
}

}  // namespace
}  // namespace kq
