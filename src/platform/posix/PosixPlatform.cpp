// Puts the parts together. A program that has dialogs copies the bundle and adds its DialogHost.
#include "platform/posix/PosixPlatform.h"

#include <time.h>
#include <utility>

#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/Machine.h"
#include "platform/posix/PosixStringTable.h"

namespace kq {
namespace {

class PosixClock final : public Clock {
 public:
    std::chrono::system_clock::time_point Now() const override { return std::chrono::system_clock::now(); }

    double SecondsSinceMidnight() const override {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        tm local{};
        localtime_r(&now.tv_sec, &local);
        // A leap second counts as the second before it: a day never has more than 86,400.
        const int second = local.tm_sec > 59 ? 59 : local.tm_sec;
        return local.tm_hour * 3600.0 + local.tm_min * 60.0 + second + static_cast<double>(now.tv_nsec) / 1e9;
    }
};

}  // namespace

std::shared_ptr<Clock> MakePosixClock() {
    return std::make_shared<PosixClock>();
}

PlatformPtr MakePlatform(std::shared_ptr<EventLoop> loop, std::optional<std::int32_t> language) {
    if (!loop) loop = MakeOwnEventLoop();
    Platform::Machine machine;
    machine.clock = MakePosixClock();
    machine.network = MakePosixNetwork(loop);
    machine.resolver = MakePosixResolver(loop);
    machine.folders = MakeXdgFolders();
    machine.profile_file = MakePosixProfileFile();
    machine.locale = language ? std::make_shared<ChosenLocale>(*language) : MakePosixLocale();
    machine.strings = MakePosixStringTable(*machine.locale);
    machine.process = MakePosixProcess();
    machine.file_share = MakeSambaShare();
    machine.version_resource = MakePeVersionResource();
    machine.crypto = MakeSodiumCrypto();
    machine.shortcuts = MakeXdgShortcuts(machine.folders);
    machine.temp_files = MakePosixTempFiles();
    machine.loop = std::move(loop);
    return MakeBundle(std::move(machine));
}

}  // namespace kq
