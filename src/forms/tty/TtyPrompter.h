// Questions and answers on a terminal, one at a time. A question that was interrupted by other output is
// asked again.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/EventLoop.h>

#include "forms/tty/TtyWords.h"
#include "platform/Terminal.h"

namespace kq {

using Terminated = std::function<bool()>;  // whether the question need not be answered any more

class TtyPrompter {
 public:
    TtyPrompter(std::shared_ptr<EventLoop> loop, std::shared_ptr<Terminal> terminal, const TtyWords& words)
        : loop_(std::move(loop)), terminal_(std::move(terminal)), words_(words) {}

    const TtyWords& Words() const { return words_; }
    EventLoop& Loop() const { return *loop_; }

    // A text on separate lines. Characters that could control the terminal are shown as "?".
    void Say(std::string_view text);
    // A short text that replaces the one before it, if the terminal can do that.
    void SayOver(std::string_view text);
    // What SayOver wrote stays.
    void EndLine();

    enum class End { Answered, GivenUp, Stopped };
    struct Reply {
        End end = End::GivenUp;
        Secret line;  // UTF-8 without control characters
    };
    // A line of text. `above`: lines that belong to the question.
    Reply Ask(const std::vector<std::string>& above, const std::string& prompt, bool echo,
              const Terminated& stop);
    // One of several by its number, beginning with 1, by its text or the beginning of that. Asks again after
    // what is neither. `marked` is taken by an empty answer; nothing may be marked.
    struct Choice {
        End end = End::GivenUp;
        std::size_t index = 0;
    };
    Choice Choose(const std::vector<std::string>& above, const std::vector<std::string>& texts,
                  std::optional<std::size_t> marked, const Terminated& stop);
    Choice YesOrNo(const std::string& question, bool yes, const Terminated& stop);  // index 1: yes

 private:
    struct Line {
        std::string text;
        std::size_t indent = 0;  // of what does not fit into the width
    };
    struct Question {
        std::vector<Line> lines;
        std::string prompt;
        bool echo = true;
    };
    void Show(const Line& line);
    // `whole`: with its lines, else its prompt alone.
    Reply AskOnce(const Question& question, bool whole, const Terminated& stop);
    Reply Stopped();
    // Asks until `choose` finds an answer in the line.
    using Chooser = std::function<std::optional<std::size_t>(const std::string& line)>;
    Choice AskUntil(const Question& question, const Chooser& choose, const Terminated& stop);

    std::shared_ptr<EventLoop> loop_;
    std::shared_ptr<Terminal> terminal_;
    const TtyWords& words_;
    std::uint64_t shown_ = 0;    // counts what was shown
    bool line_open_ = false;     // the last line on the screen has no end
    std::size_t rewritten_ = 0;  // how much of it SayOver wrote
};

}  // namespace kq
