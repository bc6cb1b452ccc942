// For programs without windows that ask their user on a terminal. It works over a remote shell too.
//
//   kq::KQAppSessClient client(kq::MakeTtyPlatform());
//   client.SystemLogin(true, login);   // asks on the terminal
//
// A dialog's boxes are asked one after the other, passwords without echo. Then its buttons are offered by
// number. If a button leaves the dialog open, the questions are asked again: from the box that an error
// message is about, otherwise from the start. An empty answer keeps the present value or, for the buttons,
// chooses the default one. A single space empties a text box. The interrupt key and end of input mean Cancel.
// Wait messages and download progress are printed. Connections and timers are served in the meantime.
//
// While a question is open the terminal is in a special mode. The previous mode is restored after every
// answer, when the program exits or an exception passes, and when the default action of a signal ends the
// program (such as SIGHUP, SIGINT, SIGTERM and faults, but not SIGKILL) or SIGTSTP stops it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>

namespace kq {

// A platform with dialogs on a terminal. `input` and `output` are open files, by default standard input and
// standard error; the caller keeps and closes them. The input need not be a terminal: the lines of a file or
// pipe are the answers. `loop` and `language`: as for MakePlatform, with the same error.
//
// A question that nobody can see counts as cancelled: the output cannot be written, accepts nothing for ten
// seconds, or only the input is a terminal. So does a password prompt whose echo cannot be turned off.
KQ_EXPORT PlatformPtr MakeTtyPlatform(std::shared_ptr<EventLoop> loop = nullptr, int input = 0,
                                      int output = 2, std::optional<std::int32_t> language = {});

}  // namespace kq
