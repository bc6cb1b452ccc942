// The limits of connections as properties: bytes and milliseconds as Long, both ways.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <kqappsession/APClient.h>
#include <kqappsession/Error.h>

namespace kq::automation {

inline std::int32_t LongOf(std::size_t bytes) {
    constexpr std::size_t kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(bytes, kLargest));
}

inline std::size_t BytesOf(long value) {
    if (value < 0) Raise(RuntimeError::InvalidProcedureCall);
    return static_cast<std::size_t>(value);
}

inline Milliseconds TimeOf(long value) {
    if (value < 0) Raise(RuntimeError::InvalidProcedureCall);
    return Milliseconds(value);
}

// Core: an APClient or a Listener.
template <class Core>
void SetLimit(Core& core, std::size_t APLimits::*limit, long value) {
    APLimits limits = core.Limits();
    limits.*limit = BytesOf(value);
    core.SetLimits(limits);
}

template <class Core>
void SetFirstFrameTimeOut(Core& core, long value) {
    APLimits limits = core.Limits();
    limits.first_frame = TimeOf(value);
    core.SetLimits(limits);
}

}  // namespace kq::automation
