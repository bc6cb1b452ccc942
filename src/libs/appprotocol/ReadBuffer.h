// One buffer for the reads of all connections of a thread. What is read must be taken out of it before any
// other code runs.
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace kq {

inline std::span<std::byte> SharedReadBuffer() {
    thread_local std::array<std::byte, 64U << 10> buffer;
    return buffer;
}

}  // namespace kq
