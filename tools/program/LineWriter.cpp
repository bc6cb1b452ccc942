// The thread shares the queue with the LineWriter. If even the last write never returns, thread and queue are
// left behind until the program ends.
#include "tools/program/LineWriter.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "tools/program/Output.h"

namespace kq {
namespace {

constexpr std::chrono::seconds kFarewell(1);
constexpr std::chrono::milliseconds kAfterThat(100);

std::size_t LinesIn(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

struct LineWriter::Queue {
    Queue(int to, std::string name, std::size_t most)
        : descriptor(to), program(std::move(name)), room(most), stop(eventfd(0, EFD_CLOEXEC)) {
        if (stop < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;
    ~Queue() { close(stop); }

    void Run();
    void WriteWaiting(std::unique_lock<std::mutex>& lock);

    const int descriptor;
    const std::string program;
    const std::size_t room;
    const int stop;  // ends a write that waits
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::string> lines;
    std::size_t bytes = 0;  // of the lines
    std::size_t lost = 0;   // before the first of the lines, since the last that was written
    int error = 0;          // why they were
    bool writing = false;
    bool closing = false;
    bool ended = false;
};

void LineWriter::Queue::Run() {
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return closing || !lines.empty(); });
        if (lines.empty()) break;
        WriteWaiting(lock);
        changed.notify_all();
    }
    ended = true;
    changed.notify_all();
}

void LineWriter::Queue::WriteWaiting(std::unique_lock<std::mutex>& lock) {
    std::string mark;
    const std::size_t told = lost;
    if (told > 0)
        mark = program + ": " + std::to_string(told) + " lines are missing here, they could not be written\n";
    const auto batch = std::exchange(lines, {});
    bytes = 0;
    writing = true;
    lock.unlock();
    std::string text = mark;
    for (const auto& line : batch)
        text += line;
    std::string_view rest = text;
    const int failure = WriteAll(descriptor, rest, {.stop = stop});
    lock.lock();
    writing = false;
    const bool marked = text.size() - rest.size() >= mark.size();
    if (marked) lost -= told;
    lost += LinesIn(rest) - (marked ? 0 : LinesIn(mark));
    if (failure != 0) error = failure == EINTR ? ETIMEDOUT : failure;
}

LineWriter::LineWriter(int descriptor, std::string program, std::size_t room)
    : queue_(std::make_shared<Queue>(descriptor, std::move(program), room)),
      thread_([queue = queue_] { queue->Run(); }) {}

LineWriter::~LineWriter() {
    Close();
    if (thread_.joinable()) thread_.detach();
}

void LineWriter::Write(std::string_view line) {
    const std::lock_guard lock(queue_->mutex);
    auto& lines = queue_->lines;
    if (queue_->closing) {
        ++queue_->lost;
        return;
    }
    while (!lines.empty() && queue_->bytes + line.size() >= queue_->room) {
        queue_->bytes -= lines.front().size();
        lines.pop_front();
        ++queue_->lost;
        queue_->error = ETIMEDOUT;
    }
    lines.emplace_back(line).push_back('\n');
    queue_->bytes += lines.back().size();
    if (!queue_->writing) queue_->changed.notify_all();
}

int LineWriter::Flush() {
    std::unique_lock lock(queue_->mutex);
    const bool done = queue_->changed.wait_for(lock, kFarewell,
                                               [this] { return queue_->lines.empty() && !queue_->writing; });
    if (!done) return ETIMEDOUT;
    return queue_->lost > 0 ? queue_->error : 0;
}

int LineWriter::Close() {
    const int error = Flush();
    std::unique_lock lock(queue_->mutex);
    queue_->closing = true;
    queue_->changed.notify_all();
    const std::uint64_t one = 1;
    if (error == ETIMEDOUT) static_cast<void>(!write(queue_->stop, &one, sizeof one));
    const bool ended = queue_->changed.wait_for(lock, kAfterThat, [this] { return queue_->ended; });
    lock.unlock();
    if (ended && thread_.joinable()) thread_.join();
    return error;
}

}  // namespace kq
