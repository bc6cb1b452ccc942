// The modes are set while a file or folder is made, so there is no moment in which others could open it.
#include "zeb/PrivateFiles.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <kqappsession/Error.h>

namespace kq::zeb {
namespace {

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

}  // namespace kq::zeb
