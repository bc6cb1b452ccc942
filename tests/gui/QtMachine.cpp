// The tests of every port, on the toolkit's event loop.
#include <kqappsession/QtPlatform.h>

#include "platform/MachineUnderTest.h"

namespace kq {

PlatformPtr MachineUnderTest() {
    return MakeQtPlatform();
}

}  // namespace kq
