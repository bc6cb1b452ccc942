// The mode is set when a file or folder is created, so others can never open it. An existing one is opened
// first, and the open file is checked: its name may mean another file a moment later.
#include "zeb/store/PrivateFiles.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include <kqappsession/Error.h>

namespace kq::zeb {
namespace {

constexpr mode_t kOthers = S_IRWXG | S_IRWXO;

[[noreturn]] void Fail(const std::string& what, int number) {
    throw Error(number, "zebd", what + ": " + std::strerror(number));
}

[[noreturn]] void Refuse(const std::string& what, int number) {
    throw Error(number, "zebd", what);
}

class File {
 public:
    explicit File(int file) : file_(file) {}
    File(File&& other) noexcept : file_(std::exchange(other.file_, -1)) {}
    File(const File&) = delete;
    ~File() {
        if (file_ >= 0) close(file_);
    }
    int Get() const { return file_; }
    int Release() { return std::exchange(file_, -1); }
    struct stat Status(const std::string& what) const {
        struct stat status {};
        if (fstat(file_, &status) != 0) Fail(what + " cannot be looked at", errno);
        return status;
    }

 private:
    int file_;
};

void RefuseOthers(const std::string& what, const struct stat& status, const char* mode) {
    if (status.st_uid != geteuid())
        Refuse(what + " belongs to another user (uid " + std::to_string(status.st_uid) + ")", EPERM);
    if ((status.st_mode & kOthers) != 0)
        Refuse(what + " is open to others; only its owner may have access (chmod " + mode + ")", EACCES);
}

File CheckedFile(File file, const std::string& what) {
    const auto status = file.Status(what);
    if (!S_ISREG(status.st_mode)) Refuse(what + " is not a regular file", EINVAL);
    RefuseOthers(what, status, "600");
    return file;
}

// Why opening a file failed. With O_NOFOLLOW a link is reported as if it were a loop of links.
[[noreturn]] void FailOpening(const std::string& path, const std::string& what) {
    const int number = errno;
    struct stat status {};
    if (number == ELOOP && lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode))
        Refuse(what + " is a symbolic link", number);
    Fail(what + " cannot be opened", number);
}

// Nothing when there is none. The flags keep what is not a regular file from having any effect.
std::optional<File> OpenPrivateFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const std::string what = "The file " + path;
    if (file < 0 && errno == ENOENT) return std::nullopt;
    if (file < 0) FailOpening(path, what);
    return CheckedFile(File(file), what);
}

std::string Read(const File& file, const std::string& path, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t size = 0;
    while (size < count) {
        const auto part = read(file.Get(), bytes.data() + size, count - size);
        if (part < 0 && errno == EINTR) continue;
        if (part < 0) Fail("The file " + path + " cannot be read", errno);
        if (part == 0) break;
        size += static_cast<std::size_t>(part);
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace

void MakePrivateFolder(const std::string& path) {
    if (mkdir(path.c_str(), S_IRWXU) == 0) return;
    const int number = errno;
    if (number != EEXIST || !PrivateFolderExists(path))
        Fail("The folder " + path + " cannot be made", number);
}

bool PrivateFolderExists(const std::string& path) {
    const std::string what = "The folder " + path;
    const File folder(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (folder.Get() < 0 && errno == ENOENT) return false;
    if (folder.Get() < 0) Fail(what + " cannot be opened", errno);
    RefuseOthers(what, folder.Status(what), "700");
    return true;
}

void CreatePrivateFile(const std::string& path) {
    const File file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.Get() < 0) Fail("The file " + path + " cannot be made", errno);
}

bool PrivateFileExists(const std::string& path) {
    return OpenPrivateFile(path).has_value();
}

std::string ReadPrivateFile(const std::string& path, std::size_t count) {
    const auto file = OpenPrivateFile(path);
    if (!file) Fail("The file " + path + " cannot be opened", ENOENT);
    return Read(*file, path, count);
}

FolderLock::FolderLock(const std::string& folder) {
    const std::string path = folder + "/zebd.lock";
    const std::string what = "The file " + path;
    constexpr int kFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    File opened(open(path.c_str(), kFlags, S_IRUSR | S_IWUSR));
    if (opened.Get() < 0) FailOpening(path, what);
    File file = CheckedFile(std::move(opened), what);
    if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) {
        file_ = file.Release();
        return;
    }
    if (errno == EWOULDBLOCK) Refuse("Another zebd is running with the data in " + folder, EWOULDBLOCK);
    Fail(what + " cannot be locked", errno);
}

FolderLock::~FolderLock() {
    close(file_);
}

}  // namespace kq::zeb
