// The machine that the tests of every port are run on. Whoever links those tests says which it is.
#pragma once

#include <kqappsession/Platform.h>

namespace kq {

PlatformPtr MachineUnderTest();

}  // namespace kq
