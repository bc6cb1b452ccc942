// Lines of standard input as events of the loop.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace kq {

class EventLoop;

// A separate thread reads, because watching the terminal with the loop would make it non-blocking for every
// program that shares it. `on_line` is called on the loop's thread, without the line's end, and never after
// this object is destroyed. Lines are cut after 4,096 bytes. At the end of the input there are no more lines;
// nothing else happens.
class CommandInput {
 public:
    CommandInput(EventLoop& loop, int input, std::function<void(const std::string&)> on_line);
    ~CommandInput();
    CommandInput(const CommandInput&) = delete;
    CommandInput& operator=(const CommandInput&) = delete;

 private:
    void Read(int input, const std::function<void(std::string)>& hand_over) const;

    std::shared_ptr<std::function<void(const std::string&)>> handler_;  // posted lines hold it weakly
    int wake_ = -1;                                                     // readable when the thread has to end
    std::thread reader_;
};

}  // namespace kq
