// Exclusive creation: an existing file or link makes it fail.
#include "platform/posix/WriteFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace kq {
namespace {

FileResult LastFailure() {
    const int number = errno;
    return {number, std::generic_category().message(number)};
}

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace

FileResult WriteNewFile(const std::string& path, std::string_view bytes, mode_t mode) {
    if (path.find('\0') != path.npos) {
        errno = EINVAL;
        return LastFailure();
    }
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (file < 0) return LastFailure();
    FileResult result;
    if (!WriteAll(file, bytes) || ::fchmod(file, mode) != 0) result = LastFailure();
    if (::close(file) != 0 && result.error == 0) result = LastFailure();
    if (result.error != 0) ::unlink(path.c_str());
    return result;
}

bool AppendTo(const std::string& path, std::string_view bytes) {
    constexpr mode_t kOwnerOnly = 0600;
    const int file =
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, kOwnerOnly);
    if (file < 0) return false;
    struct stat attributes {};
    const bool written =
        ::fstat(file, &attributes) == 0 && S_ISREG(attributes.st_mode) && WriteAll(file, bytes);
    return ::close(file) == 0 && written;
}

}  // namespace kq
