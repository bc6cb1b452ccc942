// Forms, message boxes and the question for a file as prompts on a terminal. <kqappsession/TtyPlatform.h>
// describes what the user sees.
#pragma once

#include <cstdint>
#include <memory>

#include <kqappsession/EventLoop.h>

#include "forms/DialogHost.h"
#include "platform/Terminal.h"

namespace kq {

// `locale`: the user's locale identifier, by which the texts are chosen, too.
std::shared_ptr<DialogHost> MakeTtyDialogHost(std::shared_ptr<EventLoop> loop,
                                              std::shared_ptr<Terminal> terminal, std::int32_t locale);

}  // namespace kq
