// What the library asks of the machine it runs on, bundled.
//
// A host makes one bundle per thread and gives it to every object that it creates; all objects of one bundle
// share one event loop. The bundle must be made and used on the thread that runs the loop.
#pragma once

#include <memory>

#include <kqappsession/EventLoop.h>

namespace kq {

class Clock;
class Crypto;
class DialogHost;
class FileShare;
class Folders;
class Locale;
class Network;
class Process;
class ProfileFile;
class Resolver;
class Shortcuts;
class StringTable;
class TempFiles;
class VersionResource;

struct Platform {
    std::shared_ptr<EventLoop> loop;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<Network> network;
    std::shared_ptr<Resolver> resolver;
    std::shared_ptr<Folders> folders;
    std::shared_ptr<ProfileFile> profile_file;
    std::shared_ptr<Locale> locale;
    std::shared_ptr<StringTable> strings;
    std::shared_ptr<Process> process;
    std::shared_ptr<FileShare> file_share;
    std::shared_ptr<VersionResource> version_resource;
    std::shared_ptr<Crypto> crypto;
    std::shared_ptr<Shortcuts> shortcuts;
    std::shared_ptr<TempFiles> temp_files;
    std::shared_ptr<DialogHost> dialogs;  // null in a program without a face: nothing can be asked of a user
};

using PlatformPtr = std::shared_ptr<const Platform>;

// The bundle of this machine with an event loop of its own.
PlatformPtr MakePlatform();
// The same with the host's loop.
PlatformPtr MakePlatform(std::shared_ptr<EventLoop> loop);

}  // namespace kq
