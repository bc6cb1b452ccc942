// Output to the standard streams: it is written, or the program reports the error.
#pragma once

#include <chrono>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace kq {

// How long a write waits while nobody makes room for it.
struct Patience {
    std::chrono::milliseconds time = std::chrono::milliseconds::max();  // since there was room last
    int stop = -1;  // a descriptor that ends the wait when it becomes readable; -1: none
};

// Writes the text and removes from it what was written. Returns 0, or the errno of the error that ended it;
// ETIMEDOUT and EINTR mean that the patience has ended. Waits for room before it writes, so an output that
// nobody reads holds up only this call, and only as long as the patience.
int WriteAll(int descriptor, std::string_view& text, const Patience& patience = {});

// Standard output could not be written.
struct OutputError : std::runtime_error {
    explicit OutputError(int error);  // an errno, as WriteAll gives it
};

// Writes to standard output; raises OutputError.
void Print(std::string_view text, const Patience& patience = {});

// Writes the line "program: what" to standard error immediately; waits for room for a second at most.
void Complain(std::string_view program, std::string_view what);

// A stream to a descriptor, written with each flush. After a failed write it is bad.
class OutputStream : private std::streambuf, public std::ostream {
 public:
    OutputStream(int descriptor, const Patience& patience);
    // The errno of the failed write, 0 if none failed.
    int Error() const { return error_; }

 private:
    int overflow(int c) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;
    int sync() override;

    int descriptor_;
    Patience patience_;
    std::string waiting_;
    int error_ = 0;
};

}  // namespace kq
