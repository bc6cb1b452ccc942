// The modes are set while a file or folder is made, so there is no moment in which others could open it.
#include "zeb/PrivateFiles.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <kqappsession/Error.h>

namespace kq::zeb {
namespace {

constexpr std::size_t kMaxSecretFile = 4096;

[[noreturn]] void Fail(const std::string& what, int number) {
    throw Error(number, "zebd", what + ": " + std::strerror(number) + ".");
}

}  // namespace

void MakePrivateFolder(const std::string& path) {
    if (mkdir(path.c_str(), S_IRWXU) == 0) return;
    const int number = errno;
    struct stat there {};
    if (number == EEXIST && stat(path.c_str(), &there) == 0 && S_ISDIR(there.st_mode)) return;
    Fail("The folder " + path + " cannot be made", number);
}

void CreatePrivateFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) Fail("The file " + path + " cannot be made", errno);
    close(file);
}

FolderLock::FolderLock(const std::string& folder) {
    const std::string path = folder + "/zebd.lock";
    file_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file_ < 0) Fail("The file " + path + " cannot be made", errno);
    if (flock(file_, LOCK_EX | LOCK_NB) == 0) return;
    const int number = errno;
    close(file_);
    if (number == EWOULDBLOCK)
        throw Error(number, "zebd", "Another zebd is running with the data in " + folder + ".");
    Fail("The file " + path + " cannot be locked", number);
}

FolderLock::~FolderLock() {
    close(file_);
}

bool FileExists(const std::string& path) {
    struct stat there {};
    return stat(path.c_str(), &there) == 0;
}

Secret ReadSecretFile(const std::string& path) {
    struct stat there {};
    std::ifstream file(path, std::ios::binary);
    if (stat(path.c_str(), &there) != 0 || !file) Fail("The file " + path + " cannot be read", errno);
    if ((there.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        throw Error(EACCES, "zebd",
                    "The file " + path + " holds a secret; only its owner may have access (chmod 600).");
    if (static_cast<std::size_t>(there.st_size) > kMaxSecretFile)
        throw Error(EFBIG, "zebd", "The file " + path + " is too long for a key.");
    std::string line;
    line.reserve(kMaxSecretFile);
    std::getline(file, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) throw Error(EINVAL, "zebd", "The file " + path + " holds no key in its first line.");
    return Secret(std::move(line));
}

}  // namespace kq::zeb
