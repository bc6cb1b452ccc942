// What the library asks of the machine it runs on, bundled.
//
// A host makes one bundle per thread and gives it to every object that it creates; all objects of one bundle
// share one event loop. The bundle must be made and used on the thread that runs the loop.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Export.h>

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

// The bundle of this machine. `loop`: the host's own, null for a new one. `language`: the locale identifier
// to use instead of the user's own, for hosts with a separate language setting; without it the machine's
// settings count. It is accepted from 1 to 0xFFFF when its lower ten bits, the primary language, are not all
// 0; any other number raises RuntimeError::InvalidProcedureCall. Texts are in that language when it is one of
// 1033, 1046, 2058, 9226, 10250, 11274, 13322, 14346 and 15370. Any other Spanish uses the texts of 2058, any
// other Portuguese those of 1046, and every other language those of 1033 (English). Servers are sent the
// identifier unchanged.
KQ_EXPORT PlatformPtr MakePlatform(std::shared_ptr<EventLoop> loop = nullptr,
                                   std::optional<std::int32_t> language = {});

}  // namespace kq
