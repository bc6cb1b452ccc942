// The pause between protocol steps.
#include "client/ClientState.h"
#include "client/LoginFixture.h"

namespace kq {
namespace {

class PauseTest : public LoginFixture {
 protected:
    std::shared_ptr<ClientState> state = std::make_shared<ClientState>(platform);
    Milliseconds Pause() {
        return TimeOf([this] { state->Pause(0.25F); });
    }
};

TEST_F(PauseTest, LastsAQuarterOfASecond) {
    EXPECT_GE(Pause(), Milliseconds(250));
    EXPECT_LE(Pause(), Milliseconds(260));
}

TEST_F(PauseTest, ServesTheLoopMeanwhile) {
    bool served = false;
    machine.loop->StartTimer(Milliseconds(100), [&] { served = true; });
    Pause();
    EXPECT_TRUE(served);
}

TEST_F(PauseTest, JustBeforeMidnightWaitsForTheNewDayFirst) {
    machine.clock->SetTimeOfDay(86'399.9);
    const auto time = Pause();
    EXPECT_GE(time, Milliseconds(350));
    EXPECT_LE(time, Milliseconds(400));
}

TEST_F(PauseTest, EndsBeforeMidnightWhenItCan) {
    machine.clock->SetTimeOfDay(86'399.5);
    EXPECT_LE(Pause(), Milliseconds(270));
}

TEST_F(PauseTest, EndsWithTerminateClient) {
    machine.loop->StartTimer(Milliseconds(100), [this] { state->Terminate(); });
    EXPECT_EQ(Pause(), Milliseconds(100));
}

TEST_F(PauseTest, EndsWhenTheLoopQuits) {
    machine.loop->StartTimer(Milliseconds(100), [this] { machine.loop->Quit(); });
    EXPECT_EQ(Pause(), Milliseconds(100));
}

}  // namespace
}  // namespace kq
