// Folder sharing through Samba's user shares. A network path cannot be listed here without mounting it; the
// file that Samba keeps for a share shows whether the share exists.
#include <algorithm>
#include <string_view>
#include <sys/stat.h>
#include <utility>

#include "base/Convert.h"
#include "platform/FileShare.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/PosixProcess.h"

namespace kq {
namespace {

bool IsHarmless(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return c == '"' || code < 0x20 || code == 0x7F;
    });
}

// A share's name is also the name of a file and an argument of a command.
bool IsShareName(std::string_view name) {
    return !name.empty() && IsHarmless(name) && name.find_first_of("/\\") == std::string_view::npos &&
           name.front() != '-' && name.front() != '.';
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

class SambaShare final : public FileShare {
 public:
    explicit SambaShare(std::string usershare_folder) : usershare_folder_(std::move(usershare_folder)) {}

    bool CanList(const std::string& unc_path) const override {
        std::string_view rest = unc_path;
        if (rest.rfind("\\\\", 0) != 0) return false;
        rest.remove_prefix(2);
        const std::size_t host_end = rest.find('\\');
        if (host_end == std::string_view::npos) return false;
        if (!EqualsIgnoringCase(rest.substr(0, host_end), ShortHostName())) return false;
        std::string_view name = rest.substr(host_end + 1);
        name = name.substr(0, name.find('\\'));
        if (!IsShareName(name)) return false;
        struct stat attributes {};
        const std::string entry = usershare_folder_ + "/" + LowerCase(name);
        return ::stat(entry.c_str(), &attributes) == 0 && S_ISREG(attributes.st_mode);
    }

    void Share(const std::string& name, const std::string& folder) override {
        if (!IsShareName(name) || folder.empty() || folder.front() != '/' || !IsHarmless(folder)) return;
        StartDetached({"net", "usershare", "add", name, folder, "", "Everyone:R", "guest_ok=n"}, true,
                      Output::Discarded);
    }

 private:
    std::string usershare_folder_;
};

}  // namespace

std::shared_ptr<FileShare> MakeSambaShare(std::string usershare_folder) {
    return std::make_shared<SambaShare>(std::move(usershare_folder));
}

}  // namespace kq
