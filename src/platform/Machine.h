// What the library asks of the machine it runs on, behind the opaque Platform that programs hold. A port
// makes all of it but the dialogs, which a program with a user interface adds.
#pragma once

#include <memory>
#include <string_view>

#include <kqappsession/Platform.h>

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

struct Platform::Machine {
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
    std::shared_ptr<DialogHost> dialogs;  // null: the program has no user interface
};

// A bundle of these parts.
PlatformPtr MakeBundle(Platform::Machine machine);
// The platform. Raises RuntimeError::ObjectNotSet when it is null: what is missing is an error where an
// object is made, not a crash later. `whose`: the object, as the subject of the description.
PlatformPtr RequirePlatform(PlatformPtr platform, std::string_view whose);

}  // namespace kq
