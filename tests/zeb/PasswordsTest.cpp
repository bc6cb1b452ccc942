// Rules, hashes, the threads that make them and the waiting after failures.
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "support/FakePlatform.h"
#include "zeb/store/FailedAttempts.h"
#include "zeb/store/PasswordPool.h"

namespace kq::zeb {
namespace {

Refusal Check(const std::string& password) {
    return CheckNewPassword(Secret(password), "anastasia", Secret("old password"));
}

TEST(PasswordRules, ADecentPasswordPasses) {
    EXPECT_EQ(Check("correct horse"), Refusal::None);
    EXPECT_EQ(Check("12345678"), Refusal::None);
    EXPECT_EQ(Check("non\xC2\xA0"
                    "breaking"),
              Refusal::None);
}

TEST(PasswordRules, EachRuleHasItsRefusal) {
    EXPECT_EQ(Check("old password"), Refusal::SamePassword);
    EXPECT_EQ(Check("ANASTASIA"), Refusal::PasswordIsLogin);
    EXPECT_EQ(Check("1234567"), Refusal::PasswordLength);
    EXPECT_EQ(Check(std::string(65, 'x')), Refusal::PasswordLength);
    EXPECT_EQ(Check("line\nbreak"), Refusal::PasswordCharacter);
    EXPECT_EQ(Check("next\xC2\x85line"), Refusal::PasswordCharacter);
    EXPECT_EQ(Check("last one\xC2\x9F"), Refusal::PasswordCharacter);
    EXPECT_EQ(Check("delete\x7F"
                    "it"),
              Refusal::PasswordCharacter);
    EXPECT_EQ(Check("broken\xff\xff"), Refusal::MalformedPassword);
}

TEST(PasswordRules, NumbersFollowTheCodes) {
    for (const auto refusal :
         {Refusal::SamePassword, Refusal::MalformedPassword, Refusal::UnknownUser, Refusal::PasswordLength,
          Refusal::PasswordCharacter, Refusal::PasswordIsLogin}) {
        EXPECT_EQ(CodeOf(refusal), "ZEBError-" + std::to_string(NumberOf(refusal) - 7589));
    }
}

TEST(PasswordCharacters, AreCutAtTheBeginningOfOne) {
    EXPECT_EQ(FirstCharacters("abc", 3), "abc");
    EXPECT_EQ(FirstCharacters("abcd", 3), "abc");
    EXPECT_EQ(FirstCharacters("äöüß", 3), "äöü");
    EXPECT_EQ(FirstCharacters("", 3), "");
}

TEST(PasswordCharacters, OfIllFormedTextAreAtMostFourBytesEach) {
    EXPECT_EQ(FirstCharacters(std::string(100, '\x80'), 3), std::string(12, '\x80'));
}

const Argon2Hasher& Quick() {
    static const Argon2Hasher hasher({.passes = 1, .memory = 8192});
    return hasher;
}

TEST(PasswordHash, VerifiesItsPasswordAndNoOther) {
    const auto hash = Quick().Hash(Secret("correct horse"));
    EXPECT_EQ(hash.rfind("$argon2id$", 0), 0U);
    EXPECT_TRUE(Quick().Verify(hash, Secret("correct horse")));
    EXPECT_FALSE(Quick().Verify(hash, Secret("correct horsE")));
    EXPECT_FALSE(Quick().Verify(hash, Secret()));
}

TEST(PasswordHash, IsSaltedEveryTime) {
    EXPECT_NE(Quick().Hash(Secret("correct horse")), Quick().Hash(Secret("correct horse")));
}

TEST(PasswordHash, WhatIsNoneVerifiesNothing) {
    EXPECT_FALSE(Quick().Verify("", Secret("")));
    EXPECT_FALSE(Quick().Verify("nonsense", Secret("nonsense")));
    EXPECT_FALSE(Quick().Verify(std::string(1000, '$'), Secret("x")));
}

// A door that work waits at until the test opens it.
class Door {
 public:
    void Open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }
    void Wait() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return open_; });
    }

 private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
};

TEST(PasswordThreads, TakeOnlyAsMuchAsMayWait) {
    Door door;
    Door done;
    ThreadPool pool(1, 2);
    EXPECT_TRUE(pool.Submit([&] { door.Wait(); }));
    EXPECT_TRUE(pool.Submit([] {}));
    EXPECT_TRUE(pool.Submit([&] { done.Open(); }));
    EXPECT_FALSE(pool.Submit([] {}));
    door.Open();
    done.Wait();
}

TEST(PasswordThreads, FinishWhatRunsBeforeTheyEnd) {
    Door started;
    Door door;
    std::atomic<bool> finished = false;
    std::thread opener;
    {
        ThreadPool pool(1, 0);
        pool.Submit([&] {
            started.Open();
            door.Wait();
            finished = true;
        });
        started.Wait();
        opener = std::thread([&] { door.Open(); });
    }
    EXPECT_TRUE(finished);
    opener.join();
}

class Attempts : public testing::Test {
 protected:
    FakePlatform machine;
    FailedAttempts attempts{machine.loop, {.free = 3, .table = 3}};

    void Fail(const std::string& login, int times) {
        for (int i = 0; i < times; ++i)
            attempts.Failed(login);
    }
    void Pass(Milliseconds time) { machine.loop->Advance(time); }
};

TEST_F(Attempts, TheFirstOnesAreFree) {
    Fail("ana", 2);
    EXPECT_TRUE(attempts.Begin("ana"));
}

TEST_F(Attempts, TheDelayDoubles) {
    Fail("ana", 3);
    EXPECT_FALSE(attempts.Begin("ana"));
    Pass(std::chrono::seconds(1));
    EXPECT_TRUE(attempts.Begin("ana"));
    attempts.Failed("ana");
    Pass(std::chrono::seconds(1));
    EXPECT_FALSE(attempts.Begin("ana"));
    Pass(std::chrono::seconds(1));
    EXPECT_TRUE(attempts.Begin("ana"));
}

TEST_F(Attempts, TheDelayHasAnEnd) {
    Fail("ana", 1000);
    Pass(std::chrono::minutes(5) - Milliseconds(1));
    EXPECT_FALSE(attempts.Begin("ana"));
    Pass(Milliseconds(1));
    EXPECT_TRUE(attempts.Begin("ana"));
}

TEST_F(Attempts, AfterTheFreeOnesOneAtATime) {
    Fail("ana", 3);
    Pass(std::chrono::seconds(1));
    EXPECT_TRUE(attempts.Begin("ana"));
    EXPECT_FALSE(attempts.Begin("ana"));
    attempts.Withdraw("ana");
    EXPECT_TRUE(attempts.Begin("ana"));
}

TEST_F(Attempts, SuccessForgetsTheFailures) {
    Fail("ana", 3);
    attempts.Succeeded("ana");
    EXPECT_TRUE(attempts.Begin("ana"));
    EXPECT_EQ(attempts.Size(), 0U);
}

TEST_F(Attempts, OthersAreNotSlowedDown) {
    Fail("ana", 10);
    EXPECT_TRUE(attempts.Begin("bob"));
}

TEST_F(Attempts, TimeForgetsThem) {
    Fail("ana", 3);
    Pass(std::chrono::minutes(31));
    attempts.Failed("ana");
    EXPECT_TRUE(attempts.Begin("ana"));
}

TEST_F(Attempts, TimeForgetsThemAfterHalfAnHour) {
    Fail("ana", 3);
    Pass(std::chrono::minutes(30) - Milliseconds(1));
    attempts.Failed("ana");
    EXPECT_FALSE(attempts.Begin("ana"));
}

TEST_F(Attempts, ThatAreForgottenLeaveTheTable) {
    Fail("ana", 3);
    Pass(std::chrono::minutes(30));
    attempts.Failed("bob");
    EXPECT_EQ(attempts.Size(), 1U);
}

TEST_F(Attempts, OfWhomFailedLongestAgoMakeRoomInTheTable) {
    for (const char* login : {"ana", "bob", "eve", "ana", "joe"})
        Fail(login, 3);
    EXPECT_TRUE(attempts.Begin("bob"));
    EXPECT_FALSE(attempts.Begin("ana"));
    EXPECT_FALSE(attempts.Begin("eve"));
}

TEST_F(Attempts, TheTableIsBounded) {
    for (int i = 0; i < 100; ++i)
        attempts.Failed(std::to_string(i));
    EXPECT_EQ(attempts.Size(), 3U);
}

}  // namespace
}  // namespace kq::zeb
