// Private-profile files by the system's calls. Those treat a missing name as "all names" and a bare file name
// as one in the system's folder; neither is used here.
#include <algorithm>
#include <limits>

#include "base/Utf.h"
#include "platform/ProfileFile.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"

namespace kq {
namespace {

// A line end or a NUL inside any part would make another line of the file, or cut it short.
bool CanBeWritten(std::string_view section, std::string_view key, std::string_view value) {
    constexpr std::string_view kEnds("\r\n\0", 3);
    for (const auto part : {section, key, value}) {
        if (part.find_first_of(kEnds) != std::string_view::npos) return false;
    }
    return !key.empty() && key.front() != ';' && key.front() != '[' &&
           key.find('=') == std::string_view::npos;
}

bool IsUsable(const std::string& path) {
    return !path.empty() && !HoldsNul(path);
}

class Win32ProfileFile final : public ProfileFile {
 public:
    std::string Read(const std::string& section, const std::string& key, const std::string& default_value,
                     std::size_t size, const std::string& path) const override {
        if (size == 0) return {};
        if (!IsUsable(path)) {
            const std::string value = default_value.substr(0, default_value.find_last_not_of(' ') + 1);
            return std::string(FirstCharacters(value, size - 1));
        }
        std::string buffer(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max()), '\0');
        const DWORD count = GetPrivateProfileStringA(ToAnsi(section).c_str(), ToAnsi(key).c_str(),
                                                     ToAnsi(default_value).c_str(), buffer.data(),
                                                     static_cast<DWORD>(buffer.size()), ToAnsi(path).c_str());
        return FromAnsi(std::string_view(buffer).substr(0, count));
    }

    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override {
        if (!IsUsable(path) || !CanBeWritten(section, key, value)) return false;
        return WritePrivateProfileStringA(ToAnsi(section).c_str(), ToAnsi(key).c_str(), ToAnsi(value).c_str(),
                                          ToAnsi(path).c_str()) != 0;
    }
};

}  // namespace

std::shared_ptr<ProfileFile> MakeWin32ProfileFile() {
    return std::make_shared<Win32ProfileFile>();
}

}  // namespace kq
