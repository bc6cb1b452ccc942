// A window that does not come fails the test and quits the loop, which closes everything that is open.
#include "gui/Stage.h"

#include <QApplication>
#include <QWindow>
#include <fstream>
#include <map>
#include <stdexcept>

#include <gtest/gtest.h>

#include <kqappsession/QtPlatform.h>

#include "platform/Machine.h"
#include "platform/StringTable.h"

namespace kq {
namespace {

// Texts read from a file of the form "number, text".
class FileStrings final : public StringTable {
 public:
    explicit FileStrings(const std::string& path) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            const auto comma = line.find(", ");
            if (comma != std::string::npos) texts_[std::stoi(line)] = line.substr(comma + 2);
        }
        EXPECT_FALSE(texts_.empty()) << path;
    }
    Tongue Language() const override { return Tongue::English; }
    std::optional<std::string> Load(std::int32_t id) const override {
        const auto found = texts_.find(id);
        return found == texts_.end() ? std::nullopt : std::optional(found->second);
    }

 private:
    std::map<std::int32_t, std::string> texts_;
};

PlatformPtr MachineSpeaking(std::int32_t language) {
    Platform::Machine machine = MakeQtPlatform(language)->Parts();
    if (language == kPseudoLanguage) machine.strings = std::make_shared<FileStrings>(KQ_PSEUDO_STRINGS);
    return MakeBundle(std::move(machine));
}

}  // namespace

Stage::Stage(std::int32_t language) : machine_(MachineSpeaking(language)) {
    QObject::connect(&eyes_, &QTimer::timeout, [this] { Look(); });
    eyes_.start(1);
}

Stage::~Stage() {
    EXPECT_EQ(acts_.size(), 0U) << "a window did not come";
    machine_->Loop()->ProcessPending();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "a window is left";
}

void Stage::Await(const std::function<bool()>& done, const std::string& what) {
    if (!kq::Await(Loop(), done)) throw std::runtime_error("Waited in vain for " + what);
}

void Stage::Look() {
    if (acting_ || Loop().Quitting()) return;
    QWidget* const modal = QApplication::activeModalWidget();
    const bool patient =
        std::chrono::steady_clock::now() - last_act_ < (acts_.empty() ? kPatience : acts_.front().patience);
    if (acts_.empty()) {
        if (!modal || patient) return;
        ADD_FAILURE() << modal->objectName().toStdString() << " did not go";
        Loop().Quit();
        return;
    }
    const Planned planned = acts_.front();
    QWidget* const window = FindWindow(planned.window);
    const bool there = window && window->windowHandle()->isExposed() &&
                       (modal == window ? window->isActiveWindow() : !window->isModal() && !modal);
    if (there) {
        acts_.pop_front();
        acting_ = true;
        try {
            planned.act(*window);
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
            Loop().Quit();
        }
        acting_ = false;
        last_act_ = std::chrono::steady_clock::now();
    } else if (!patient) {
        ADD_FAILURE() << planned.window << " did not come";
        Loop().Quit();
    }
}

QWidget* FindWindow(const std::string& name) {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->objectName().toStdString() == name) return window;
    }
    return nullptr;
}

}  // namespace kq
