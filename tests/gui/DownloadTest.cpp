// The download window at a real server: what moves it, what ends it.
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QProgressBar>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kqappsession/Listener.h>

#include "dialogs/frmDownload.h"
#include "gui/User.h"

namespace kq {
namespace {

std::string Failed(const std::string& reason) {
    return "An error occurred while downloading: " + reason + ".  Would you like to try to login again?";
}

class DownloadWindow : public testing::Test {
 protected:
    DownloadWindow() {
        listener_->Receive.Connect(owner_,
                                   [this](const Listener::ClientPtr& peer, const Block&) { peer_ = peer; });
        listener_->Listen(0, "127.0.0.1");
        client_->Connect("127.0.0.1", listener_->Port(), "", 10'000);
    }
    bool Download() { return frmDownload(stage.Machine()).DownloadClient(client_, path_, try_again_); }
    // Once the window is there and the request has come, the server does so.
    void Server(std::function<void()> answers) {
        stage.When("frmDownload", [this, answers = std::move(answers)](QWidget&) {
            stage.Await([&] { return peer_ != nullptr; }, "the request");
            answers();
        });
    }
    void Refuses() {
        XMLMessage refusal("ASDownloadClientResponse", "1");
        refusal.SetField("ErrorNumber", "5");
        refusal.SetField("ErrorDesc", "No client");
        peer_->Send(refusal);
    }
    // The next question says so and is answered so.
    void Question(const std::string& text, const std::string& answer, Milliseconds patience = kPatience) {
        const auto answers = [=, this](QWidget& box) {
            EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text().toStdString(), text);
            EXPECT_EQ(box.windowTitle(), "Login Procedure");
            user.Answers(box, answer);
        };
        stage.When("MessageBox", answers, patience);
    }

    Stage stage;
    User user{stage};
    std::shared_ptr<Listener> listener_ = Listener::Create(stage.Machine());
    std::shared_ptr<APClient> client_ = APClient::Create(stage.Machine());
    Listener::ClientPtr peer_;  // the server's side, once the request has come
    std::string path_ = "unchanged";
    bool try_again_ = true;
    Owner owner_;
};

TEST_F(DownloadWindow, MovesItsBarAndSavesTheFile) {
    constexpr std::size_t kSize = 7 << 20;
    std::vector<int> seen;
    stage.When("frmDownload", [&](QWidget& window) {
        const auto& bar = In<QProgressBar>(window, "pbProgress");
        EXPECT_EQ(bar.value(), 0);
        QObject::connect(&bar, &QProgressBar::valueChanged, &window,
                         [&seen](int value) { seen.push_back(value); });
        stage.Await([&] { return peer_ != nullptr; }, "the request");
        peer_->SendBytes(std::string(kSize, 'x'));
        stage.Await([&] { return seen.size() > 2; }, "the bar to move");
    });
    EXPECT_TRUE(Download());
    EXPECT_TRUE(std::ranges::is_sorted(seen));
    EXPECT_EQ(std::filesystem::file_size(path_), kSize);
    EXPECT_EQ(std::filesystem::status(path_).permissions(), std::filesystem::perms::owner_all);
    // The empty file of the temporary name stays beside the program.
    ASSERT_TRUE(path_.ends_with(".exe"));
    const std::string temporary = path_.substr(0, path_.size() - 3) + "tmp";
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
    EXPECT_TRUE(std::filesystem::remove(path_));
    EXPECT_TRUE(std::filesystem::remove(temporary));
}

// What came to any of the program's windows.
class EventNotes : public QObject {
 public:
    EventNotes() { QCoreApplication::instance()->installEventFilter(this); }
    int closes = 0;
    int escapes = 0;

 protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (!object->isWidgetType()) return false;
        if (event->type() == QEvent::Close) ++closes;
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            ++escapes;
        return false;
    }
};

TEST_F(DownloadWindow, CannotBeClosedByHand) {
    stage.When("frmDownload", [&](QWidget& window) {
        stage.Await([&] { return peer_ != nullptr; }, "the request");
        const EventNotes notes;
        user.ClosesByTheSystem(window);
        stage.Await([&] { return notes.closes > 0; }, "the close box");
        EXPECT_TRUE(window.isVisible());
        user.Presses("Escape");
        stage.Await([&] { return notes.escapes > 0; }, "the key");
        EXPECT_TRUE(window.isVisible());
        Refuses();
    });
    Question(Failed("No client"), "Yes");
    EXPECT_FALSE(Download());
    EXPECT_TRUE(try_again_);
}

TEST_F(DownloadWindow, SaysWhyTheServerRefuses) {
    Server([this] { Refuses(); });
    Question(Failed("No client"), "No");
    EXPECT_FALSE(Download());
    EXPECT_FALSE(try_again_);
    EXPECT_EQ(path_, "unchanged");
}

TEST_F(DownloadWindow, PutsTheSentenceIntoItselfForAnAnswerThatIsNone) {
    Server([this] {
        peer_->SetSendType(DataType::XML);
        peer_->SendText("no message");
    });
    Question(Failed(Failed("An unknown response was received")), "No");
    EXPECT_FALSE(Download());
    EXPECT_FALSE(try_again_);
}

TEST_F(DownloadWindow, EndsWhenNothingComesForFifteenSeconds) {
    const auto begin = std::chrono::steady_clock::now();
    Server([] {});
    Question(Failed(Failed("The process timed-out")), "No", std::chrono::seconds(40));
    EXPECT_FALSE(Download());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(15));
    EXPECT_FALSE(try_again_);
}

}  // namespace
}  // namespace kq
