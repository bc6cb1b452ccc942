// A pipe of one page whose other side the test holds.
#pragma once

#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace kq {

class Pipe {
 public:
    Pipe() {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0 || fcntl(ends_[1], F_SETPIPE_SZ, 4096) < 0)
            throw std::runtime_error("no pipe");
    }
    ~Pipe() {
        CloseReader();
        CloseWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int Reader() const { return ends_[0]; }
    int Writer() const { return ends_[1]; }
    void CloseReader() { Close(ends_[0]); }
    void CloseWriter() { Close(ends_[1]); }
    void Fill() const {
        const std::string page(4096, '.');
        if (write(ends_[1], page.data(), page.size()) != 4096) throw std::runtime_error("no room");
    }
    // What comes up to the text, which must come.
    std::string ReadUpTo(const std::string& end) const {
        std::string text;
        std::array<char, 4096> bytes{};
        while (text.find(end) == std::string::npos) {
            const ssize_t count = read(ends_[0], bytes.data(), bytes.size());
            if (count <= 0) throw std::runtime_error("the pipe ended after:\n" + text);
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

 private:
    static void Close(int& end) {
        if (end >= 0) close(end);
        end = -1;
    }
    std::array<int, 2> ends_{-1, -1};
};

}  // namespace kq
