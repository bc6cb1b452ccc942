// Writing a file that must be new, and adding to one that may be there.
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>

#include "platform/TempFiles.h"

namespace kq {

// Creates `path`, which must not exist, with exactly this mode and writes the bytes. Nothing of it is left
// after a failure.
FileResult WriteNewFile(const std::string& path, std::string_view bytes, mode_t mode);

// Adds the bytes to the end of an ordinary file; a new one is its owner's alone. Nothing else is opened for
// long or waited for: a pipe without a reader makes it fail.
bool AppendTo(const std::string& path, std::string_view bytes);

}  // namespace kq
