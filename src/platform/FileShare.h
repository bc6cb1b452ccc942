// Sharing a folder on the network. Neither call raises, and neither waits until the share is available.
#pragma once

#include <string>

namespace kq {

class FileShare {
 public:
    virtual ~FileShare() = default;
    // Whether the share's network path ("\\HOST\Name\") can be listed.
    virtual bool CanList(const std::string& unc_path) const = 0;
    // Asks the platform to share `folder` as `name`, without a shell.
    virtual void Share(const std::string& name, const std::string& folder) = 0;
};

}  // namespace kq
