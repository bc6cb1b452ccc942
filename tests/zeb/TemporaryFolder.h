// A folder of a test's own, gone at its end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace kq::zeb {

class TemporaryFolder {
 public:
    TemporaryFolder() : path_((std::filesystem::temp_directory_path() / "kqzebXXXXXX").string()) {
        if (!mkdtemp(path_.data())) throw std::runtime_error("no folder for the test");
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string Path(const std::string& name) const { return path_ + "/" + name; }

 private:
    std::string path_;
};

}  // namespace kq::zeb
