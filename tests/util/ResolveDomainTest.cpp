// What a host name becomes.
#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "util/ResolveDomain.h"

namespace kq {
namespace {

struct ResolveDomainTest : testing::Test {
    FakePlatform machine;
    ResolveDomain resolve{machine.platform};
};

TEST_F(ResolveDomainTest, PassesADottedAddressThroughTheResolver) {
    EXPECT_EQ(resolve.IPFromDomain("127.0.0.1"), "127.0.0.1");
    EXPECT_EQ(machine.resolver->asked, std::vector<std::string>{"127.0.0.1"});
}

TEST_F(ResolveDomainTest, IsEmptyForAnUnknownHost) {
    EXPECT_EQ(resolve.IPFromDomain("no.such.host"), "");
}

TEST_F(ResolveDomainTest, AsksForTheLocalHostByTheEmptyName) {
    EXPECT_EQ(resolve.IPFromDomain(""), "127.0.0.1");
    machine.resolver->names.clear();
    EXPECT_EQ(resolve.IPFromDomain(""), "");
}

TEST_F(ResolveDomainTest, TakesTheFirstOfSeveralAddresses) {
    machine.resolver->names["zeb"] = {"10.0.0.2", "10.0.0.1"};
    EXPECT_EQ(resolve.IPFromDomain("zeb"), "10.0.0.2");
}

TEST_F(ResolveDomainTest, TakesNoAddressOfAnotherKind) {
    machine.resolver->names["six"] = {"::1"};
    EXPECT_EQ(resolve.IPFromDomain("six"), "");
}

}  // namespace
}  // namespace kq
