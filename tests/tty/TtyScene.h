// A machine whose user sits at a terminal.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "forms/tty/TtyDialogHost.h"
#include "messages/MessagesTesting.h"
#include "platform/Machine.h"
#include "tty/FakeTerminal.h"

namespace kq {

struct TtyScene : testing::Test {
    explicit TtyScene(std::int32_t locale = 1033) {
        Platform::Machine parts = machine.platform->Parts();
        parts.dialogs = MakeTtyDialogHost(machine.fakes.loop, terminal, locale);
        platform = MakeBundle(parts);
    }
    ~TtyScene() override { EXPECT_EQ(terminal->LinesLeft(), 0U) << terminal->Screen(); }

    BoxButton Box(BoxStyle style) {
        return platform->Parts().dialogs->ShowMessageBox("Go on?", "Title", style);
    }

    EnglishMachine machine{FakePlatform::Face::None};
    std::shared_ptr<FakeTerminal> terminal = std::make_shared<FakeTerminal>(machine.fakes.loop);
    PlatformPtr platform;
};

}  // namespace kq
