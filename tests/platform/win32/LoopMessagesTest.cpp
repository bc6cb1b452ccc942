// The loop among other users of the thread's messages: windows of the host, its loop, its order to quit.
#include <string>

#include <gtest/gtest.h>

#include "platform/Patience.h"
#include "platform/PortTesting.h"
#include "platform/win32/MessageWindow.h"
#include "platform/win32/Win32Module.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

constexpr UINT kHello = WM_APP;

class LoopMessages : public testing::Test {
 protected:
    ~LoopMessages() override {
        MSG message;  // no test leaves an order to quit behind
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        }
    }
    // A message loop of the host, which ends when `done` holds.
    void RunHostLoop(const std::function<bool()>& done) {
        const UINT_PTR wake = SetTimer(nullptr, 0, 1000, nullptr);
        const auto end = loop_->Now() + kPatience;
        MSG message;
        while (!done() && loop_->Now() < end && GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        KillTimer(nullptr, wake);
    }

    std::shared_ptr<EventLoop> loop_ = MakeWin32EventLoop();
    std::string heard_;
    MessageWindow window_{[this](UINT message, WPARAM, LPARAM) {
        if (message == kHello) heard_ += "hello ";
    }};
};

TEST_F(LoopMessages, OfOtherWindowsAreServedDuringAWait) {
    PostMessageW(window_.Get(), kHello, 0, 0);
    EXPECT_TRUE(Await(*loop_, [&] { return heard_ == "hello "; }));
}

TEST_F(LoopMessages, OfOtherWindowsAreServedByProcessPending) {
    PostMessageW(window_.Get(), kHello, 0, 0);
    loop_->ProcessPending();
    EXPECT_EQ(heard_, "hello ");
}

TEST_F(LoopMessages, OfAnotherWindowThatNeverRestsDoNotKeepProcessPending) {
    MessageWindow restless([&](UINT message, WPARAM, LPARAM) {
        if (message == kHello) PostMessageW(restless.Get(), kHello, 0, 0);
    });
    PostMessageW(restless.Get(), kHello, 0, 0);
    loop_->ProcessPending();
}

TEST_F(LoopMessages, InAHostsLoopServeTasksTimersAndSockets) {
    SocketPair sockets;
    loop_->Watch(sockets.Near(), {true, false}, [&](EventLoop::Readiness) { heard_ += sockets.TakeOne(); });
    loop_->StartTimer(Milliseconds(1), [&] { sockets.Send("xy"); });
    loop_->Post([&] { heard_ += "task "; });
    RunHostLoop([&] { return heard_ == "task xy"; });
    EXPECT_EQ(heard_, "task xy");
}

TEST_F(LoopMessages, InAHostsLoopServeEachTimerInItsTime) {
    loop_->StartTimer(Milliseconds(30), [&] { heard_ += "b"; });
    loop_->StartTimer(Milliseconds(1), [&] {
        heard_ += "a";
        loop_->StartTimer(Milliseconds(30), [&] { heard_ += "c"; });
    });
    RunHostLoop([&] { return heard_.size() == 3; });
    EXPECT_EQ(heard_, "abc");
}

TEST_F(LoopMessages, ServeTheTimersOfALoopThatIsKeptBusy) {
    std::function<void()> again = [&] { loop_->Post(again); };
    again();
    bool fired = false;
    loop_->StartTimer(Milliseconds(5), [&] { fired = true; });
    EXPECT_TRUE(Await(*loop_, [&] { return fired; }));
    again = [] {};
}

TEST_F(LoopMessages, ThatOrderToQuitEndEveryWaitAndReachTheHost) {
    EXPECT_FALSE(loop_->Quitting());
    loop_->Post([] { PostQuitMessage(7); });
    loop_->Run();
    EXPECT_TRUE(loop_->Quitting());
    EXPECT_FALSE(loop_->RunUntil([] { return false; }, loop_->Now() + kPatience));
    MSG message;
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.wParam, 7U);
    EXPECT_FALSE(loop_->Quitting());
}

TEST_F(LoopMessages, GoOnInsideAModalLoopThatATaskRuns) {
    loop_->Post([&] {
        loop_->Post([&] { heard_ += "inner "; });
        RunHostLoop([&] { return heard_ == "inner "; });
        heard_ += "outer";
    });
    EXPECT_TRUE(Await(*loop_, [&] { return heard_ == "inner outer"; }));
}

TEST_F(LoopMessages, AreNotDisturbedByUrgentBytes) {
    SocketPair sockets;
    int calls = 0;
    loop_->Watch(sockets.Near(), {true, false}, [&](EventLoop::Readiness) {
        ++calls;
        heard_ += sockets.TakeOne();
    });
    EXPECT_EQ(send(sockets.Far(), "!", 1, MSG_OOB), 1);
    loop_->ProcessPending();
    sockets.Send("x");
    EXPECT_TRUE(Await(*loop_, [&] { return heard_.ends_with("x"); }));
    EXPECT_LE(calls, 2);
}

TEST(MessageWindows, LeaveNoClassBehind) {
    WNDCLASSEXW unused{};
    unused.cbSize = sizeof unused;
    const auto is_registered = [&] {
        return GetClassInfoExW(ThisModule(), L"KQAppSessionLib.MessageWindow", &unused) != 0;
    };
    EXPECT_FALSE(is_registered());
    auto loop = MakeWin32EventLoop();
    EXPECT_TRUE(is_registered());
    loop.reset();
    EXPECT_FALSE(is_registered());
}

TEST(MessageWindows, ReportWhatTheirHandlersThrow) {
    int reported = 0;
    auto before = SetStrayExceptionHandler([&](std::exception_ptr) { ++reported; });
    MessageWindow window([](UINT message, WPARAM, LPARAM) {
        if (message == kHello) throw std::runtime_error("broken");
    });
    SendMessageW(window.Get(), kHello, 0, 0);
    SetStrayExceptionHandler(std::move(before));
    EXPECT_EQ(reported, 1);
}

}  // namespace
}  // namespace kq
