// Private-profile files. A write replaces the whole file: a new file beside it is renamed to its name, so a
// reader sees the old text or the new one. Writers in one folder take turns by a lock on it, so they do not
// undo each other's writes.
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <utility>

#include "base/Utf.h"
#include "platform/ProfileFile.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/ProfileText.h"

namespace kq {
namespace {

constexpr off_t kLargestFile = 16 << 20;
constexpr mode_t kNewFileMode = 0600;

class File {
 public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (descriptor_ != -1) ::close(descriptor_);
    }
    int Get() const { return descriptor_; }
    bool IsOpen() const { return descriptor_ != -1; }

 private:
    int descriptor_;
};

struct Content {
    std::string text;
    mode_t mode = kNewFileMode;
};

// The file's content; an empty one when there is no such file; nothing when it is there and cannot be read.
std::optional<Content> Load(const std::string& path) {
    const File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen()) return errno == ENOENT ? std::optional<Content>(Content{}) : std::nullopt;
    struct stat attributes {};
    if (::fstat(file.Get(), &attributes) != 0 || !S_ISREG(attributes.st_mode)) return std::nullopt;
    if (attributes.st_size > kLargestFile) return std::nullopt;
    Content content{{}, attributes.st_mode & 07777};
    char buffer[16384];
    for (;;) {
        const ssize_t count = ::read(file.Get(), buffer, sizeof buffer);
        if (count == 0) return content;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        content.text.append(buffer, static_cast<std::size_t>(count));
    }
}

bool WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool Replace(const std::string& path, const Content& content) {
    std::string temporary = path + ".XXXXXX";
    const File file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.IsOpen()) return false;
    const bool replaced = ::fchmod(file.Get(), content.mode) == 0 && WriteAll(file.Get(), content.text) &&
                          ::fsync(file.Get()) == 0 && ::rename(temporary.c_str(), path.c_str()) == 0;
    if (!replaced) ::unlink(temporary.c_str());
    return replaced;
}

// The file that a path means: a link stays a link and its target is what is replaced.
std::string TargetOf(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> target(::realpath(path.c_str(), nullptr), &std::free);
    return target ? std::string(target.get()) : path;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Turns last as long as one small file takes to write; a folder that stays locked is somebody's mistake and
// must not hold the thread.
bool Lock(const File& folder) {
    constexpr int kTries = 200;
    constexpr timespec kPause{0, 10'000'000};
    for (int i = 0; i < kTries; ++i) {
        if (::flock(folder.Get(), LOCK_EX | LOCK_NB) == 0) return true;
        if (errno != EWOULDBLOCK && errno != EINTR) return false;
        ::nanosleep(&kPause, nullptr);
    }
    return false;
}

bool IsUsable(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

class PosixProfileFile final : public ProfileFile {
 public:
    std::string Read(const std::string& section, const std::string& key, const std::string& default_value,
                     std::size_t size, const std::string& path) const override {
        std::optional<std::string> value;
        if (IsUsable(path)) {
            if (const auto content = Load(path)) value = FindProfileValue(content->text, section, key);
        }
        if (!value) value = default_value.substr(0, default_value.find_last_not_of(' ') + 1);
        return std::string(FirstCharacters(*value, size > 0 ? size - 1 : 0));
    }

    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override {
        if (!IsUsable(path)) return false;
        const std::string target = TargetOf(path);
        const File folder(::open(FolderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!folder.IsOpen()) return false;
        if (!Lock(folder)) return false;
        auto content = Load(target);
        if (!content) return false;
        auto text = WithProfileValue(content->text, section, key, value);
        if (!text) return false;
        content->text = std::move(*text);
        return Replace(target, *content);
    }
};

}  // namespace

std::shared_ptr<ProfileFile> MakePosixProfileFile() {
    return std::make_shared<PosixProfileFile>();
}

}  // namespace kq
