// For programs without windows that ask their user on a terminal, over a remote shell too:
//
//   kq::KQAppSessClient client(kq::MakeTtyPlatform());
//   client.SystemLogin(true, login);   // asks on the terminal
//
// A dialog's boxes are asked one after the other, passwords without echo; then its buttons are offered by
// number. As long as a button leaves the dialog open it is asked again: after a message from the box that it
// is about, else from the start. An empty answer keeps what is there, for buttons the default one; a single
// space empties a text box. The interrupt key and the end of the input are Cancel. What a login waits for,
// and how far a download is, are told in lines. Connections and timers are served meanwhile.
//
// While a question waits the terminal is in a mode of its own; the mode before comes back with every answer,
// when the program exits or an exception passes, and when the default action of a usual signal ends it
// (SIGHUP, SIGINT, SIGTERM, those of faults and others, but for example not SIGKILL) or that of SIGTSTP stops
// it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <kqappsession/Export.h>
#include <kqappsession/Platform.h>

namespace kq {

// The bundle of this machine with dialogs on a terminal: `input` and `output` are open files, by default
// standard input and standard error; they stay the caller's. The input need not be a terminal: a file or pipe
// gives its lines as answers. Where nobody sees the questions, because they cannot be written or are asked of
// a terminal but written elsewhere, each of them is answered by Cancel; an output that takes nothing for ten
// seconds counts as one that cannot be written. So is a password that the terminal would show.
// `loop` and `language` as for MakePlatform, with its error.
KQ_EXPORT PlatformPtr MakeTtyPlatform(std::shared_ptr<EventLoop> loop = nullptr, int input = 0,
                                      int output = 2, std::optional<std::int32_t> language = {});

}  // namespace kq
