// A folder of a test's own, gone with everything in it when the test ends.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdlib.h>
#include <string>
#include <string_view>

namespace kq {

class TemporaryFolder {
 public:
    TemporaryFolder() {
        std::random_device random;
        const std::string beginning = (std::filesystem::temp_directory_path() / "kqtest.").string();
        do {
            path_ = beginning + std::to_string(random());
        } while (!std::filesystem::create_directory(path_));
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& Path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }

    std::string Put(const std::string& name, std::string_view content) const {
        std::ofstream(File(name), std::ios::binary) << content;
        return File(name);
    }
    std::string Get(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

 private:
    std::string path_;
};

}  // namespace kq
