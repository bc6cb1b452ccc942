// The lists of states and failures.
#include <fstream>
#include <sstream>

#include "client/LoginFailures.h"
#include "client/LoginFixture.h"

namespace kq {
namespace {

constexpr LoginStates kAllStates[] = {
#define KQ_X(name, role) name,
    KQ_LOGIN_STATES(KQ_X)
#undef KQ_X
};

TEST(LoginStates, HaveTheirFixedValues) {
    EXPECT_EQ(static_cast<int>(lsValidateClient), 0);
    EXPECT_EQ(static_cast<int>(lsGetLoginInfo), 4);
    EXPECT_EQ(static_cast<int>(lsFailed), 5);
    EXPECT_EQ(static_cast<int>(lsGetSessionInfo), 11);
    EXPECT_EQ(static_cast<int>(lsAttemptConnectServer), 12);
    EXPECT_EQ(static_cast<int>(lsAttemptRegister), 13);
    EXPECT_EQ(static_cast<int>(lsFinish), 14);
}

TEST(LoginStates, StandInTheTourAsTheListSays) {
    std::ostringstream table;
    table << "| Value | State | What it does |\n|---|---|---|\n";
    for (const LoginStates state : kAllStates)
        table << "| " << static_cast<int>(state) << " | `" << NameOf(state) << "` | " << RoleOf(state)
              << " |\n";
    std::ifstream file(KQ_SOURCE_DIR "/docs/tour.md");
    std::stringstream tour;
    tour << file.rdbuf();
    EXPECT_THAT(tour.str(), testing::HasSubstr(table.str())) << table.str();
}

TEST(LoginFailures, HaveTextsThatTheTablesHold) {
    const FakePlatform machine;
    const auto texts = MakePosixStringTable(*machine.locale);
    const FailureRule rules[] = {
#define KQ_X(name, text, question, error, cause, yes, no, cancel) RuleOf(LoginFailure::name),
        KQ_LOGIN_FAILURES(KQ_X)
#undef KQ_X
    };
    for (const auto& rule : rules) {
        EXPECT_TRUE(rule.text == 0 || texts->Load(rule.text)) << rule.text;
        EXPECT_EQ(rule.text == 0, rule.question == Question::None);
        EXPECT_EQ(rule.error == 0, rule.cause == ErrorCause::Other);
        EXPECT_TRUE(rule.error == 0 ||
                    texts->Load(rule.error - static_cast<std::int32_t>(0x80040A00U) + 1000))
            << rule.error;
    }
}

}  // namespace
}  // namespace kq
