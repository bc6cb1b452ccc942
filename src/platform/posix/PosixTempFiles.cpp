// Temporary files with the same names as on other systems. Every file is created; an existing file is never
// opened.
#include <cerrno>
#include <cstdlib>
#include <random>
#include <sys/stat.h>

#include "base/Utf.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/WriteFile.h"

namespace kq {
namespace {

constexpr std::size_t kPrefixLength = 3;
constexpr unsigned kNames = 0x10000;

std::string TemporaryFolder() {
    const char* const named = std::getenv("TMPDIR");
    std::string folder = named && named[0] == '/' ? named : "/tmp";
    if (folder.back() != '/') folder += '/';
    return folder;
}

// Four digits, as many names as the platform of these names has.
std::string Digits(unsigned number) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string digits;
    for (int shift = 12; shift >= 0; shift -= 4)
        digits += kDigits[(number >> shift) & 0xFU];
    return digits;
}

class PosixTempFiles final : public TempFiles {
 public:
    FileResult CreateUnique(std::string_view prefix, std::string& path) override {
        const std::string start = TemporaryFolder() + std::string(FirstCharacters(prefix, kPrefixLength));
        const unsigned first = std::random_device()() % kNames;
        FileResult result;
        for (unsigned i = 0; i < kNames; ++i) {
            path = start + Digits((first + i) % kNames) + ".tmp";
            result = WriteNewFile(path, {}, S_IRUSR | S_IWUSR);
            if (result.error != EEXIST) break;
        }
        return result;
    }

    FileResult WriteNewProgram(const std::string& path, std::string_view bytes) override {
        return WriteNewFile(path, bytes, S_IRWXU);
    }
};

}  // namespace

std::shared_ptr<TempFiles> MakePosixTempFiles() {
    return std::make_shared<PosixTempFiles>();
}

}  // namespace kq
