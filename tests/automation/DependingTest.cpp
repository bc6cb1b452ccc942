// A program whose own manifest names the DLL's assembly: it stands in the DLL's folder, and nothing is
// registered.
#include <KQTimerLib.h>
#include <objbase.h>

#include <gtest/gtest.h>

#include "automation/Ptr.h"

namespace kq {
namespace {

TEST(DependingProgram, CreatesObjectsByNameWithoutRegistration) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    {
        CLSID id{};
        ASSERT_EQ(CLSIDFromProgID(L"KQTimerLib.Timer", &id), S_OK);
        automation::Ptr<_Timer> timer;
        ASSERT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_Timer), timer.OutVoid()),
                  S_OK);
        long interval = 0;
        EXPECT_EQ(timer->put_Interval(250), S_OK);
        EXPECT_EQ(timer->get_Interval(&interval), S_OK);
        EXPECT_EQ(interval, 250);
    }
    CoUninitialize();
}

}  // namespace
}  // namespace kq
