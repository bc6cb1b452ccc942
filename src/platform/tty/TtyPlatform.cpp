#include <kqappsession/TtyPlatform.h>

#include "platform/Locale.h"
#include "platform/tty/TtyDialogHost.h"

namespace kq {

PlatformPtr MakeTtyPlatform(std::shared_ptr<EventLoop> loop, int input, int output) {
    auto bundle = std::make_shared<Platform>(*(loop ? MakePlatform(std::move(loop)) : MakePlatform()));
    bundle->dialogs = MakeTtyDialogHost(bundle->loop, MakeTerminal(bundle->loop, input, output),
                                        bundle->locale->UserLocaleId());
    return bundle;
}

}  // namespace kq
