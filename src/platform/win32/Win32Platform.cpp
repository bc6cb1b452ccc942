// Puts the parts together. A program that has dialogs copies the bundle and adds its DialogHost.
#include "platform/win32/Win32Platform.h"

#include <utility>

#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/Machine.h"
#include "platform/win32/Win32Api.h"

namespace kq {
namespace {

class Win32Clock final : public Clock {
 public:
    std::chrono::system_clock::time_point Now() const override { return std::chrono::system_clock::now(); }

    double SecondsSinceMidnight() const override {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        return now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond + now.wMilliseconds / 1000.0;
    }
};

class Win32Locale final : public Locale {
 public:
    std::int32_t UserLocaleId() const override { return static_cast<std::int32_t>(GetUserDefaultLCID()); }
};

}  // namespace

std::shared_ptr<Clock> MakeWin32Clock() {
    return std::make_shared<Win32Clock>();
}

std::shared_ptr<Locale> MakeWin32Locale() {
    return std::make_shared<Win32Locale>();
}

PlatformPtr MakePlatform(std::shared_ptr<EventLoop> loop, std::optional<std::int32_t> language) {
    if (!loop) loop = MakeWin32EventLoop();
    Platform::Machine machine;
    machine.clock = MakeWin32Clock();
    machine.network = MakeWin32Network(loop);
    machine.resolver = MakeWin32Resolver(loop);
    machine.folders = MakeWin32Folders();
    machine.profile_file = MakeWin32ProfileFile();
    machine.locale = language ? std::make_shared<ChosenLocale>(*language) : MakeWin32Locale();
    machine.strings = MakeWin32StringTable(language);
    machine.process = MakeWin32Process();
    machine.file_share = MakeWin32FileShare();
    machine.version_resource = MakeWin32VersionResource();
    machine.crypto = MakeWin32Crypto();
    machine.shortcuts = MakeWin32Shortcuts(machine.folders);
    machine.temp_files = MakeWin32TempFiles();
    machine.loop = std::move(loop);
    return MakeBundle(std::move(machine));
}

}  // namespace kq
