// The port itself, with the event loop that it brings along.
#include "platform/MachineUnderTest.h"

namespace kq {

PlatformPtr MachineUnderTest() {
    return MakePlatform();
}

}  // namespace kq
