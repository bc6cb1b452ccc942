// The system's descriptions of its error numbers.
#pragma once

#include <cstdint>
#include <string>

namespace kq {

// In the user's language, without a full stop at its end; for an unknown number one that names it.
std::string SystemErrorText(std::uint32_t error);

}  // namespace kq
