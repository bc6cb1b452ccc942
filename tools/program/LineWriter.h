// Lines that a server writes without ever waiting for whoever reads them.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace kq {

// A queue of lines and a thread that writes them, together all that have come in the meantime. When nobody
// reads, the queue loses its oldest lines. Where lines are missing, for that reason or because a write
// failed, a line tells how many. All members may be called from any thread.
class LineWriter {
 public:
    static constexpr std::size_t kRoom = 1U << 20;  // bytes

    // `program` begins the lines about lost ones. The queue holds `room` bytes, or one line that is longer.
    // Raises std::system_error.
    LineWriter(int descriptor, std::string program, std::size_t room = kRoom);
    ~LineWriter();  // Close
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    // A line without its end; never waits.
    void Write(std::string_view line);
    // Waits until every line so far is written or lost, for a second at most. Returns why lines are missing
    // that no later line has told of, as an errno (ETIMEDOUT: nobody reads), or 0 when that is not so.
    int Flush();
    // Flush; what is not written then is lost, as is every later line.
    int Close();

 private:
    struct Queue;
    std::shared_ptr<Queue> queue_;
    std::thread thread_;
};

}  // namespace kq
