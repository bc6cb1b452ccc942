// The scene of every dialog test: a machine that speaks English and a user who does at each window what the
// test says, and is asked nothing else.
#pragma once

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "messages/MessagesTesting.h"

namespace kq {

struct DialogScene : testing::Test {
    ~DialogScene() override {
        EXPECT_EQ(host.ScriptsLeft(), 0U) << "a window did not come";
        EXPECT_EQ(host.AnswersLeft(), 0U) << "a box did not come";
        EXPECT_EQ(host.OpenWindows(), 0U) << "a window was not unloaded";
    }

    void BoxSaid(const std::string& text, const std::string& caption, BoxStyle style) {
        EXPECT_EQ(host.LastBox().text, text);
        EXPECT_EQ(host.LastBox().caption, caption);
        EXPECT_EQ(host.LastBox().style, style);
    }

    EnglishMachine machine;
    FakeDialogHost& host = *machine.fakes.dialogs;
    FakeEventLoop& loop = *machine.fakes.loop;
};

struct FakeIcon : Icon {};

}  // namespace kq
