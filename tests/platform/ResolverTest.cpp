// Names to addresses, at once and in the background. Asks for nothing that would leave this machine.
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/Platform.h>

#include "platform/Machine.h"
#include "platform/MachineUnderTest.h"
#include "platform/Patience.h"
#include "platform/Resolver.h"

namespace kq {
namespace {

// A name that the resolver refuses without asking anybody: longer than any name can be.
const std::string kImpossibleName(300, 'x');

class Names : public testing::Test {
 protected:
    void Resolve(const std::string& host) {
        resolver_->Resolve(host, owner_,
                           [this](std::vector<std::string> found) { found_ = std::move(found); });
        EXPECT_FALSE(found_);
    }
    bool Answered() {
        return Await(*loop_, [&] { return found_.has_value(); });
    }

    PlatformPtr machine_ = MachineUnderTest();
    std::shared_ptr<EventLoop> loop_ = machine_->Loop();
    std::shared_ptr<Resolver> resolver_ = machine_->Parts().resolver;
    std::optional<std::vector<std::string>> found_;
    Owner owner_;
};

TEST_F(Names, ThatAreDottedAddressesComeBackAsTheyAre) {
    EXPECT_EQ(resolver_->FirstIPv4("127.0.0.1"), "127.0.0.1");
    EXPECT_EQ(resolver_->FirstIPv4("192.0.2.77"), "192.0.2.77");
}

TEST_F(Names, GiveTheFirstIPv4AddressOrNothing) {
    EXPECT_EQ(resolver_->FirstIPv4("localhost"), "127.0.0.1");
    EXPECT_EQ(resolver_->FirstIPv4(kImpossibleName), "");
    EXPECT_EQ(resolver_->FirstIPv4("::1"), "");
    EXPECT_EQ(resolver_->FirstIPv4(std::string("localhost\0x", 11)), "");
}

TEST_F(Names, AreResolvedInTheBackground) {
    Resolve("localhost");
    ASSERT_TRUE(Answered());
    ASSERT_FALSE(found_->empty());
    EXPECT_EQ(found_->front(), "127.0.0.1");
}

TEST_F(Names, ThatAreNumericNeedNoResolving) {
    Resolve("::1");
    ASSERT_TRUE(Answered());
    EXPECT_EQ(*found_, std::vector<std::string>{"::1"});
}

TEST_F(Names, ThatAreUnknownGiveAnEmptyAnswer) {
    Resolve(kImpossibleName);
    ASSERT_TRUE(Answered());
    EXPECT_TRUE(found_->empty());
}

TEST_F(Names, AnswerNobodyWhoHasGone) {
    Resolve("127.0.0.1");
    Resolve("localhost");
    owner_.Cancel();
    loop_->RunUntil([] { return false; }, loop_->Now() + Milliseconds(50));
    EXPECT_FALSE(found_);
}

TEST_F(Names, OutliveTheResolverAndTheLoopWithoutHarm) {
    const auto held = std::make_shared<int>(0);
    resolver_->Resolve("localhost", owner_, [held](const std::vector<std::string>&) {});
    machine_.reset();
    resolver_.reset();
    EXPECT_EQ(held.use_count(), 1);
    loop_.reset();
}

}  // namespace
}  // namespace kq
