// A person at a terminal: reads lines, types lines.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include <kqappsession/EventLoop.h>
#include <kqappsession/Secret.h>

namespace kq {

class Terminal {
 public:
    enum class End {
        Line,     // a line was typed
        GivenUp,  // the interrupt key, the end of the input, or nobody sees what is written
        Stopped,  // `stop` came to hold, or the loop quits
    };
    struct Answer {
        End end = End::GivenUp;
        Secret line;  // as it was typed, without its end
    };

    virtual ~Terminal() = default;
    // Characters in a line. 0: unknown, or as many as one likes.
    virtual std::size_t Width() const = 0;
    // Whether "\r" goes back to the start of the line, so that the line can be written anew.
    virtual bool Rewrites() const = 0;
    // Shows a text at once; "\n" ends a line.
    virtual void Write(std::string_view text) = 0;
    // Shows the prompt, then runs the event loop until a line has been typed or `stop` holds. What is typed
    // from the prompt on is shown only with `echo`. The line on the screen is ended with the answer, but not
    // by Stopped. Calls nest: the innermost takes the next line.
    virtual Answer ReadLine(std::string_view prompt, bool echo, const std::function<bool()>& stop) = 0;
};

// The port's. Reads from and writes to open files, which stay the caller's: a terminal or anything else that
// a line can be read from.
std::shared_ptr<Terminal> MakeTerminal(std::shared_ptr<EventLoop> loop, int input, int output);

}  // namespace kq
