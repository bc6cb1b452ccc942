// The network share of a folder, named by the computer.
#pragma once

#include <string>

#include <kqappsession/Platform.h>

namespace kq {

// The computer's short name, at most 15 characters.
std::string GetLocalComputerName(const PlatformPtr& platform);

// The network path of the folder's share, "\\COMPUTER\name\". When the path cannot be listed, the system is
// asked to share the folder. The path is returned whether or not the share exists then. Never raises, never
// waits.
std::string EnsureShare(const PlatformPtr& platform, const std::string& folder_path,
                        const std::string& share_name);

}  // namespace kq
