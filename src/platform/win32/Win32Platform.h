// The parts of this port, one maker each. MakePlatform puts them together; tests make them one by one.
//
// The port needs Windows 7. It may be part of a DLL: nothing of it remains when its objects are destroyed,
// and a thread that it has started holds the module until the thread has ended.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Platform.h>

#include "platform/Machine.h"

namespace kq {

// A loop on the messages of the calling thread, which must be the one that runs it. Message loops of others,
// such as a modal dialog's, serve it as well.
std::shared_ptr<EventLoop> MakeWin32EventLoop();
std::shared_ptr<Clock> MakeWin32Clock();
std::shared_ptr<Network> MakeWin32Network(std::shared_ptr<EventLoop> loop);
std::shared_ptr<Resolver> MakeWin32Resolver(std::shared_ptr<EventLoop> loop);
std::shared_ptr<Folders> MakeWin32Folders();
std::shared_ptr<ProfileFile> MakeWin32ProfileFile();
std::shared_ptr<Locale> MakeWin32Locale();
// `language`: the locale identifier that a host has chosen; without it the system's loader chooses.
std::shared_ptr<StringTable> MakeWin32StringTable(std::optional<std::int32_t> language = {});
std::shared_ptr<Process> MakeWin32Process();
// Runs a command line with a hidden window and does not wait for it.
using CommandRunner = std::function<void(const std::string& command_line)>;
std::shared_ptr<FileShare> MakeWin32FileShare(CommandRunner run = {});
std::shared_ptr<VersionResource> MakeWin32VersionResource();
std::shared_ptr<Crypto> MakeWin32Crypto();
std::shared_ptr<Shortcuts> MakeWin32Shortcuts(std::shared_ptr<Folders> folders);
std::shared_ptr<TempFiles> MakeWin32TempFiles();

}  // namespace kq
