#include "tools/kqappserver/CommandInput.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

#include <kqappsession/EventLoop.h>

namespace kq {
namespace {

constexpr std::size_t kLongestLine = 4'096;

}  // namespace

CommandInput::CommandInput(EventLoop& loop, int input, std::function<void(const std::string&)> on_line)
    : handler_(std::make_shared<std::function<void(const std::string&)>>(std::move(on_line))),
      wake_(eventfd(0, EFD_CLOEXEC)) {
    if (wake_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    reader_ = std::thread([this, &loop, input, weak = std::weak_ptr(handler_)] {
        Read(input, [&loop, &weak](std::string line) {
            loop.Post([weak, line = std::move(line)] {
                if (const auto handler = weak.lock()) (*handler)(line);
            });
        });
    });
}

CommandInput::~CommandInput() {
    const std::uint64_t one = 1;
    while (write(wake_, &one, sizeof one) < 0 && errno == EINTR) {
    }
    reader_.join();
    close(wake_);
}

// Returns at the end of the input, at an error and when woken.
void CommandInput::Read(int input, const std::function<void(std::string)>& hand_over) const {
    std::string line;
    std::array<char, 512> bytes{};
    for (;;) {
        std::array<pollfd, 2> descriptors{{{input, POLLIN, 0}, {wake_, POLLIN, 0}}};
        if (poll(descriptors.data(), descriptors.size(), -1) < 0 && errno != EINTR) return;
        if (descriptors[1].revents != 0) return;
        if (descriptors[0].revents == 0) continue;
        const ssize_t count = read(input, bytes.data(), bytes.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count <= 0) return;
        for (const char c : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
            if (c == '\n') {
                hand_over(std::move(line));
                line.clear();
            } else if (line.size() < kLongestLine) {
                line += c;
            }
        }
    }
}

}  // namespace kq
