// Reading a new password without showing it.
#pragma once

#include <iosfwd>
#include <string>

#include <kqappsession/Secret.h>

namespace kq::zeb {

// From a terminal: asks twice on standard error, with the echo off. From anything else: the first line of
// `in`. Raises kq::Error when the two differ or nothing comes.
Secret ReadNewPassword(std::istream& in, bool terminal, std::ostream& prompt);
bool StandardInputIsTerminal();

}  // namespace kq::zeb
