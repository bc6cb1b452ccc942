// Writing a file that must be new.
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>

#include "platform/TempFiles.h"

namespace kq {

// Creates `path`, which must not exist, with exactly this mode and writes the bytes. Nothing of it is left
// after a failure.
FileResult WriteNewFile(const std::string& path, std::string_view bytes, mode_t mode);

}  // namespace kq
