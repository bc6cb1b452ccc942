#include <kqappsession/TtyPlatform.h>

#include "forms/tty/TtyDialogHost.h"
#include "platform/Locale.h"

namespace kq {

PlatformPtr MakeTtyPlatform(std::shared_ptr<EventLoop> loop, int input, int output,
                            std::optional<std::int32_t> language) {
    auto bundle = std::make_shared<Platform>(*MakePlatform(std::move(loop), language));
    bundle->dialogs = MakeTtyDialogHost(bundle->loop, MakeTerminal(bundle->loop, input, output),
                                        bundle->locale->UserLocaleId());
    return bundle;
}

}  // namespace kq
