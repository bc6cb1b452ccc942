// Numbers, sources and sentences of errors.
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "base/ErrorNumber.h"

namespace kq {
namespace {

TEST(RuntimeErrors, CarryTheAutomationNumberTheLibrarysNameAndTheUsualSentence) {
    try {
        Raise(RuntimeError::ObjectNotSet);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(static_cast<std::uint32_t>(error.Number()), 0x800A005BU);
        EXPECT_EQ(error.Source(), "KQAppSessionLib");
        EXPECT_EQ(error.Description(), "Object variable or With block variable not set");
        EXPECT_STREQ(error.what(), error.Description().c_str());
    }
}

TEST(ErrorNumberText, IsHexadecimalForAutomationCodesAndDecimalForConnections) {
    EXPECT_EQ(ErrorNumberText(NumberOf(RuntimeError::ObjectNotSet)), "0x800A005B");
    EXPECT_EQ(ErrorNumberText(10060), "10060");
    EXPECT_EQ(ErrorNumberText(0), "0");
}

TEST(RuntimeErrors, TakeADescriptionThatTellsMore) {
    try {
        Raise(RuntimeError::TypeMismatch, "No such kind");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Description(), "No such kind");
    }
}

TEST(NetErrors, CarryWinsocksNumberAndTheGivenSource) {
    try {
        Raise(NetError::Refused, "KQAppProtocolLib");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), 10061);
        EXPECT_EQ(error.Source(), "KQAppProtocolLib");
        EXPECT_EQ(error.Description(), "The connection was refused");
    }
}

TEST(ErrorCauses, AreKeptBesideTheNumber) {
    const Error error(1, "source", "text", ErrorCause::ServerFailure);
    EXPECT_EQ(error.Cause(), ErrorCause::ServerFailure);
    EXPECT_STREQ(NameOf(error.Cause()), "ServerFailure");
    EXPECT_EQ(Error(1, "source", "text").Cause(), ErrorCause::Other);
}

TEST(ErrorCauses, FollowFromTheNumbersOfConnections) {
    const auto cause = [](NetError error) { return CauseOf(static_cast<std::int32_t>(error)); };
    EXPECT_EQ(cause(NetError::TimedOut), ErrorCause::NoReply);
    EXPECT_EQ(cause(NetError::Refused), ErrorCause::NoConnection);
    EXPECT_EQ(cause(NetError::HostNotFound), ErrorCause::NoConnection);
    EXPECT_EQ(cause(NetError::Interrupted), ErrorCause::Other);
    EXPECT_EQ(CauseOf(NumberOf(RuntimeError::Overflow)), ErrorCause::Other);
}

TEST(NetErrors, NameTheNumberWhenItHasNoSentence) {
    EXPECT_EQ(NetErrorText(12345), "The network reported error 12345");
}

TEST(NetErrors, EveryNamedOneHasASentence) {
    for (const auto error :
         {NetError::AccessDenied, NetError::InvalidArgument, NetError::MessageTooLong, NetError::AddressInUse,
          NetError::AddressNotAvailable, NetError::NetworkUnreachable, NetError::ConnectionAborted,
          NetError::ConnectionReset, NetError::NoBufferSpace, NetError::NotConnected, NetError::TimedOut,
          NetError::Refused, NetError::HostUnreachable, NetError::HostNotFound}) {
        const auto number = static_cast<std::int32_t>(error);
        EXPECT_EQ(NetErrorText(number).find(std::to_string(number)), std::string::npos) << number;
    }
}

}  // namespace
}  // namespace kq
