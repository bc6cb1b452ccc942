// The look-up of names above calls that answer what the test wants, when it wants.
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/net/NameLookup.h"
#include "support/FakeEventLoop.h"

namespace kq {
namespace {

// Names whose look-up takes place when the test says so.
class FakeNames final : public NameCalls {
 public:
    std::string LocalHostName() override { return "here"; }
    std::optional<std::string> Numeric(const std::string& text) override {
        return text.starts_with("::") ? std::optional(text) : std::nullopt;
    }
    std::vector<std::string> Ask(const std::string& host, Family family) override {
        asked += host + " ";
        if (family == Family::IPv6) return {"2001:db8::1", "::ffff:192.0.2.1"};
        return {"192.0.2.1", "192.0.2.2", "192.0.2.1"};
    }
    std::string FirstIPv4(const std::string& host) override { return "first of " + host; }
    bool RunOnThread(std::function<void()> work) override {
        if (has_threads) threads.push_back(std::move(work));
        return has_threads;
    }

    std::string asked;
    bool has_threads = true;
    std::vector<std::function<void()>> threads;
};

class Lookup : public testing::Test {
 protected:
    void Resolve(const std::string& host) {
        lookup_->Resolve(host, owner_, [this](const std::vector<std::string>& found) {
            told_ += "[";
            for (const auto& address : found)
                told_ += address + " ";
            told_ += "]";
        });
    }
    void RunThreads() {
        for (const auto& work : std::exchange(names_->threads, {}))
            work();
    }

    std::shared_ptr<FakeNames> names_ = std::make_shared<FakeNames>();
    std::shared_ptr<FakeEventLoop> loop_ = std::make_shared<FakeEventLoop>();
    std::shared_ptr<Resolver> lookup_ = MakeNameLookup(names_, loop_);
    std::string told_;
    Owner owner_;
};

TEST_F(Lookup, GivesEveryAddressOnceIPv4First) {
    Resolve("host");
    RunThreads();
    EXPECT_EQ(told_, "");
    loop_->RunReady();
    EXPECT_EQ(told_, "[192.0.2.1 192.0.2.2 2001:db8::1 ]");
}

TEST_F(Lookup, AsksNobodyAboutAnAddressOrWhatIsNoName) {
    Resolve("::ffff:192.0.2.7");
    Resolve(std::string("a\0b", 3));
    RunThreads();
    loop_->RunReady();
    EXPECT_EQ(told_, "[192.0.2.7 ][]");
    EXPECT_EQ(names_->asked, "");
}

TEST_F(Lookup, TakesNoNameAsTheLocalHosts) {
    Resolve("");
    RunThreads();
    EXPECT_EQ(names_->asked, "here here ");
}

TEST_F(Lookup, FindsNothingWithoutAThread) {
    names_->has_threads = false;
    Resolve("host");
    EXPECT_EQ(told_, "");
    loop_->RunReady();
    EXPECT_EQ(told_, "[]");
}

TEST_F(Lookup, ForgetsItsQuestionsWhenItIsDestroyed) {
    Resolve("host");
    lookup_.reset();
    loop_.reset();
    RunThreads();
    EXPECT_EQ(told_, "");
}

}  // namespace
}  // namespace kq
