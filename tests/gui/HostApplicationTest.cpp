// The loop in a program that runs QApplication::exec itself, ends it and posts to it as it likes.
#include <QApplication>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/QtPlatform.h>

#include "platform/Patience.h"
#include "platform/PortTesting.h"

namespace kq {
namespace {

class HostApplication : public testing::Test {
 protected:
    // Ends the program's own loop once `done` holds; whether it came to that.
    bool RunHostUntil(const std::function<bool()>& done) {
        QTimer asks;
        bool held = false;
        QObject::connect(&asks, &QTimer::timeout, [&] {
            if (held = done(); held) QApplication::quit();
        });
        asks.start(1);
        QTimer::singleShot(kPatience, &asks, [] { QApplication::quit(); });
        QApplication::exec();
        return held;
    }

    std::shared_ptr<EventLoop> loop_ = MakeQtPlatform()->Loop();
    std::string heard_;
};

TEST_F(HostApplication, RunsTheLoopsTasksAndTimers) {
    loop_->Post([&] { heard_ += "task "; });
    loop_->StartTimer(Milliseconds(1), [&] { heard_ += "timer"; });
    RunHostUntil([&] { return heard_ == "task timer"; });
    EXPECT_EQ(heard_, "task timer");
}

TEST_F(HostApplication, ServesTheHostsTimersDuringAWait) {
    QTimer::singleShot(0, [&] { heard_ = "host"; });
    EXPECT_TRUE(Await(*loop_, [&] { return heard_ == "host"; }));
}

TEST_F(HostApplication, LetsAHostsHandlerWaitForWhatItHasPosted) {
    bool held = false;
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [&] { heard_ += "host "; });
        loop_->StartTimer(Milliseconds(5), [&] { heard_ += "task"; });
        held = Await(*loop_, [&] { return heard_ == "host task"; });
    });
    RunHostUntil([&] { return held; });
    EXPECT_TRUE(held);
}

TEST_F(HostApplication, EndsAWaitWhenTheHostQuits) {
    bool held = true;
    loop_->Post([&] {
        QTimer::singleShot(1, [] { QApplication::quit(); });
        held = loop_->RunUntil([] { return false; }, loop_->Now() + kPatience);
    });
    QApplication::exec();
    EXPECT_FALSE(held);
}

TEST_F(HostApplication, GoesOnAfterTheLoopHasQuit) {
    loop_->Quit();
    loop_->Run();
    RunHostUntil([&] {
        heard_ = "ran";
        return true;
    });
    EXPECT_EQ(heard_, "ran");
}

TEST_F(HostApplication, OutlivesTheLoop) {
    loop_->Post([&] { heard_ = "never"; });
    loop_.reset();
    RunHostUntil([] { return true; });
    EXPECT_EQ(heard_, "");
}

TEST_F(HostApplication, MayLoseTheLoopInOneOfItsTasks) {
    loop_->Post([this] { loop_.reset(); });
    RunHostUntil([&] { return loop_ == nullptr; });
    EXPECT_EQ(loop_, nullptr);
}

TEST_F(HostApplication, IsNotStarvedByTasksThatPostEachOther) {
    bool over = false;
    int posted = 0;
    std::function<void()> again = [&] {
        ++posted;
        if (!over) loop_->Post(again);
    };
    again();
    EXPECT_TRUE(RunHostUntil([&] { return posted > 1; }));
    over = true;
    loop_->ProcessPending();
}

// A window that is painted anew as soon as it has been painted.
struct Painted : QWidget {
    void paintEvent(QPaintEvent*) override {
        ++count;
        update();
    }
    int count = 0;
};

TEST_F(HostApplication, IsServedWhileASocketIsAlwaysReady) {
    SocketPair sockets;
    int calls = 0;
    const auto watch = loop_->Watch(sockets.Near(), {true, false}, [&](EventLoop::Readiness) { ++calls; });
    sockets.Send("x");
    Painted window;
    window.show();
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(5);
    EXPECT_TRUE(RunHostUntil([&] { return ticks >= 10 && window.count >= 10 && calls >= 10; }));
    loop_->Unwatch(watch);
}

TEST_F(HostApplication, MakesABundleOnItsOwnThreadOnly) {
    std::string refusal;
    std::thread other([&] {
        try {
            MakeQtPlatform();
        } catch (const Error& error) {
            refusal = error.Description();
        }
    });
    other.join();
    EXPECT_EQ(refusal, "MakeQtPlatform must be called on the thread of the QApplication");
}

TEST_F(HostApplication, RefusesALanguageThatIsNoLocaleIdentifier) {
    EXPECT_THROW(MakeQtPlatform(99'999), Error);
}

TEST_F(HostApplication, DeletesDuringAWaitWhatIsToBeDeletedLater) {
    const QPointer<QObject> object = new QObject;
    object->deleteLater();
    EXPECT_TRUE(Await(*loop_, [&] { return !object; }));
}

TEST_F(HostApplication, CarriesTheErrorOfAConditionThroughTheWait) {
    int asked = 0;
    const auto breaks = [&]() -> bool {
        if (++asked == 1) return false;
        throw std::runtime_error("broken");
    };
    loop_->Post([] {});
    EXPECT_THROW(loop_->RunUntil(breaks, loop_->Now() + kPatience), std::runtime_error);
}

}  // namespace
}  // namespace kq
