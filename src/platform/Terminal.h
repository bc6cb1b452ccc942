// A user at a terminal: reads texts, types lines.
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
        GivenUp,  // the interrupt key, the end of the input, or nobody can see what is written
        Stopped,  // `stop` returned true, or the loop quits
    };
    struct Answer {
        End end = End::GivenUp;
        Secret line;  // as it was typed, without its end
    };

    virtual ~Terminal() = default;
    // Characters in a line. 0: unknown or unlimited.
    virtual std::size_t Width() const = 0;
    // Whether "\r" goes back to the start of the line, so that the line can be written anew.
    virtual bool Rewrites() const = 0;
    // Shows a text immediately; "\n" ends a line.
    virtual void Write(std::string_view text) = 0;
    // Shows the prompt, then runs the event loop until a line has been typed or `stop` returns true. Input
    // from the prompt on is shown only with `echo`. An answer ends the line on the screen, Stopped does not.
    // Calls may be nested: the innermost one gets the next line.
    virtual Answer ReadLine(std::string_view prompt, bool echo, const std::function<bool()>& stop) = 0;
};

// Made by the port. Reads from and writes to open files, which the caller keeps: a terminal or anything else
// that a line can be read from.
std::shared_ptr<Terminal> MakeTerminal(std::shared_ptr<EventLoop> loop, int input, int output);

}  // namespace kq
