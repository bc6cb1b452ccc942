#include "messages/EnsureShare.h"

#include <cstddef>
#include <exception>

#include "base/Utf.h"
#include "platform/FileShare.h"
#include "platform/Machine.h"
#include "platform/Process.h"

namespace kq {
namespace {

constexpr std::size_t kComputerNameLength = 15;

}  // namespace

std::string GetLocalComputerName(const PlatformPtr& platform) {
    return std::string(FirstCharacters(platform->Parts().process->ComputerName(), kComputerNameLength));
}

// The folder is named inside quotation marks when it is shared, so a mark in its name would end the name.
std::string EnsureShare(const PlatformPtr& platform, const std::string& folder_path,
                        const std::string& share_name) {
    std::string path;
    try {
        path = "\\\\" + GetLocalComputerName(platform) + "\\" + share_name + "\\";
        const bool quotable = (folder_path + share_name).find('"') == std::string::npos;
        FileShare& file_share = *platform->Parts().file_share;
        if (quotable && !file_share.CanList(path)) file_share.Share(share_name, folder_path);
    } catch (const std::exception&) {
        // The path is returned whether or not the share exists.
    }
    return path;
}

}  // namespace kq
