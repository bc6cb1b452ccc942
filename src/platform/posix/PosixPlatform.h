// The parts of this port, one maker each. MakePlatform puts them together; tests make them one by one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Platform.h>

#include "platform/Machine.h"

namespace kq {

// A loop with an io_context of its own.
std::shared_ptr<EventLoop> MakeOwnEventLoop();
std::shared_ptr<Clock> MakePosixClock();
std::shared_ptr<Network> MakePosixNetwork(std::shared_ptr<EventLoop> loop);
std::shared_ptr<Resolver> MakePosixResolver(std::shared_ptr<EventLoop> loop);
std::shared_ptr<Folders> MakeXdgFolders();
std::shared_ptr<ProfileFile> MakePosixProfileFile();
std::shared_ptr<Locale> MakePosixLocale();
std::shared_ptr<Process> MakePosixProcess();
// Shares made by a user are kept as files in `usershare_folder`.
std::shared_ptr<FileShare> MakeSambaShare(std::string usershare_folder = "/var/lib/samba/usershares");
std::shared_ptr<VersionResource> MakePeVersionResource();
std::shared_ptr<Crypto> MakeSodiumCrypto();
std::shared_ptr<Shortcuts> MakeXdgShortcuts(std::shared_ptr<Folders> folders);
std::shared_ptr<TempFiles> MakePosixTempFiles();

}  // namespace kq
