// The checks are made on the open file, so it cannot be exchanged in between.
#include "tools/program/KeyFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <kqappsession/Error.h>

#include "base/Utf.h"

namespace kq {
namespace {

constexpr std::size_t kRandomBytes = 32;
constexpr char kSource[] = "KeyFile";

class File {
 public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    ~File() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    int Descriptor() const { return descriptor_; }

 private:
    int descriptor_;
};

// Wiped at the end, whatever happens.
template <std::size_t size>
struct Buffer {
    Buffer() = default;
    ~Buffer() { WipeMemory(bytes.data(), bytes.size()); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    std::array<char, size> bytes{};
};

[[noreturn]] void Fail(int number, const std::string& path, const std::string& what) {
    throw Error(number, kSource, "The key file " + path + " " + what);
}

[[noreturn]] void FailWithSystemError(int number, const std::string& path, const std::string& what,
                                      const std::string& remedy = {}) {
    Fail(number, path, what + ": " + std::strerror(number) + remedy);
}

void CheckFile(int file, const std::string& path) {
    struct stat status {};
    if (fstat(file, &status) != 0) FailWithSystemError(errno, path, "cannot be read");
    if (!S_ISREG(status.st_mode)) Fail(EINVAL, path, "is not a regular file; 'zebctl bus-key' makes one");
    if (status.st_uid != geteuid() && status.st_uid != 0) {
        Fail(EACCES, path, "belongs to another user; make the user who runs this program its owner (chown)");
    }
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        Fail(EACCES, path, "is accessible to other users; 'chmod 600 " + path + "' corrects that");
    }
}

std::string_view WithoutWhiteSpaceAtTheEnd(std::string_view text) {
    const auto last = text.find_last_not_of(" \t\r\n\v\f");
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::size_t CountCharacters(std::string_view text) {
    const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins));
}

void CheckKey(std::string_view key, const std::string& path) {
    const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
    if (key.empty()) Fail(EINVAL, path, "is empty; 'zebctl bus-key' makes one with a key");
    if (key.find('\n') != std::string_view::npos) {
        Fail(EINVAL, path, "has more than one line; leave the line with the key");
    }
    if (std::any_of(key.begin(), key.end(), is_control) || !IsValidUtf8(key)) {
        Fail(EINVAL, path, "is not a text file; 'zebctl bus-key' makes one with a key");
    }
    if (const auto count = CountCharacters(key); count < kLeastKey) {
        Fail(EINVAL, path,
             "has a key of " + std::to_string(count) + " characters; a key has " + std::to_string(kLeastKey) +
                 " or more ('zebctl bus-key' makes one)");
    }
}

void WriteAll(int file, std::string_view text, const std::string& path) {
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            const int number = errno;
            unlink(path.c_str());
            FailWithSystemError(number, path, "cannot be written");
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace

Secret ReadKeyFile(const std::string& path) {
    // Opening a pipe must not wait for its other end.
    const File file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (file.Descriptor() < 0) {
        const int number = errno;
        FailWithSystemError(number, path, "cannot be read",
                            number == ENOENT ? "; 'zebctl bus-key' makes one" : "");
    }
    CheckFile(file.Descriptor(), path);
    Buffer<kMostKeyFile + 1> text;
    std::size_t size = 0;
    while (size < text.bytes.size()) {
        const ssize_t count = read(file.Descriptor(), text.bytes.data() + size, text.bytes.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) FailWithSystemError(errno, path, "cannot be read");
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
    }
    if (size > kMostKeyFile) {
        Fail(EFBIG, path,
             "is over " + std::to_string(kMostKeyFile) + " bytes; 'zebctl bus-key' makes one with a key");
    }
    const auto key = WithoutWhiteSpaceAtTheEnd({text.bytes.data(), size});
    CheckKey(key, path);
    return Secret(key);
}

void MakeKeyFile(const std::string& path) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    Buffer<kRandomBytes> random;
    if (getrandom(random.bytes.data(), random.bytes.size(), 0) != static_cast<ssize_t>(random.bytes.size())) {
        FailWithSystemError(errno, path, "cannot be made");
    }
    Buffer<2 * kRandomBytes + 1> text;
    for (std::size_t i = 0; i < kRandomBytes; ++i) {
        const auto byte = static_cast<unsigned char>(random.bytes[i]);
        text.bytes[2 * i] = kDigits[byte >> 4U];
        text.bytes[2 * i + 1] = kDigits[byte & 15U];
    }
    text.bytes.back() = '\n';
    const File file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.Descriptor() < 0) {
        FailWithSystemError(errno, path, "cannot be made");
    }
    WriteAll(file.Descriptor(), {text.bytes.data(), text.bytes.size()}, path);
}

}  // namespace kq
