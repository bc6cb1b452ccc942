#include <kqappsession/TtyPlatform.h>

#include "forms/tty/TtyDialogHost.h"
#include "platform/Locale.h"
#include "platform/Machine.h"

namespace kq {

PlatformPtr MakeTtyPlatform(std::shared_ptr<EventLoop> loop, int input, int output,
                            std::optional<std::int32_t> language) {
    Platform::Machine machine = MakePlatform(std::move(loop), language)->Parts();
    machine.dialogs = MakeTtyDialogHost(machine.loop, MakeTerminal(machine.loop, input, output),
                                        machine.locale->UserLocaleId());
    return MakeBundle(std::move(machine));
}

}  // namespace kq
