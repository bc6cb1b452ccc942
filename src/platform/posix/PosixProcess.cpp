// The computer's name, the running program's path, and starting others.
#include "platform/posix/PosixProcess.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "base/Utf.h"
#include "platform/Process.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

constexpr std::size_t kShortNameLength = 15;

// The spawn settings of a program that is on its own.
class SpawnSettings {
 public:
    explicit SpawnSettings(Output output) {
        posix_spawnattr_init(&attributes);
        posix_spawn_file_actions_init(&actions);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes,
                                 POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output == Output::Discarded) {
            posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
            posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        }
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
};

void CollectInBackground(pid_t child) {
    try {
        std::thread([child] {
            while (::waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
            }
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread the entry of the ended program stays until this one ends.
    }
}

class PosixProcess final : public Process {
 public:
    std::string ComputerName() const override { return ShortHostName(); }

    std::string ExecutablePath() const override {
        std::string path(1024, '\0');
        for (;;) {
            const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
            if (length < 0) return {};
            if (static_cast<std::size_t>(length) < path.size()) {
                path.resize(static_cast<std::size_t>(length));
                return path;
            }
            path.resize(2 * path.size());
        }
    }

    std::string Start(const std::string& path) override {
        const int error = StartDetached({path}, false, Output::Kept);
        return error == 0 ? std::string() : std::generic_category().message(error);
    }
};

}  // namespace

std::string ShortHostName() {
    std::array<char, 256> buffer{};
    if (::gethostname(buffer.data(), buffer.size() - 1) != 0) return {};
    const std::string_view name(buffer.data());
    return std::string(FirstCharacters(name.substr(0, name.find('.')), kShortNameLength));
}

int StartDetached(const std::vector<std::string>& arguments, bool search, Output output) {
    std::vector<char*> raw;
    for (const auto& argument : arguments) {
        if (argument.find('\0') != std::string::npos) return EINVAL;
        raw.push_back(const_cast<char*>(argument.c_str()));
    }
    if (raw.empty() || arguments.front().empty()) return ENOENT;
    raw.push_back(nullptr);
    const SpawnSettings settings(output);
    pid_t child = 0;
    const auto spawn = search ? ::posix_spawnp : ::posix_spawn;
    const int error = spawn(&child, raw[0], &settings.actions, &settings.attributes, raw.data(), environ);
    if (error == 0) CollectInBackground(child);
    return error;
}

std::shared_ptr<Process> MakePosixProcess() {
    return std::make_shared<PosixProcess>();
}

}  // namespace kq
