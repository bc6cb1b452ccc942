// Lines that a server writes without ever waiting for their reader.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace kq {

// A queue of lines and a thread that writes them, all queued lines together. When nobody reads, the oldest
// lines are dropped. Where lines are missing, for that reason or because a write failed, a line says how
// many. All members may be called from any thread.
class LineWriter {
 public:
    static constexpr std::size_t kRoom = 1U << 20;  // bytes

    // `program`: the beginning of the lines about missing ones. The queue holds `room` bytes, or one longer
    // line. Raises std::system_error.
    LineWriter(int descriptor, std::string program, std::size_t room = kRoom);
    ~LineWriter();  // Close
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    // A line without its end; never waits.
    void Write(std::string_view line);
    // Waits until every line so far is written or lost, for a second at most. Returns an errno if lines are
    // missing that no later line has reported (ETIMEDOUT: nobody reads), else 0.
    int Flush();
    // As Flush. Lines that are not written then are lost, as are all later ones.
    int Close();

 private:
    struct Queue;
    std::shared_ptr<Queue> queue_;
    std::thread thread_;
};

}  // namespace kq
