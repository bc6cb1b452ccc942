// Size, position and show state of a window of the program, in the platform call's ten values.
#pragma once

#include <cstdint>
#include <optional>

namespace kq {

struct Placement {
    std::int32_t flags = 0;  // 1: the minimised position is given; 2: minimised, goes back to maximised
    // Where the upper left corner is while the window is maximised or minimised; -1: wherever the system
    // likes.
    std::int32_t max_position_x = -1;
    std::int32_t max_position_y = -1;
    std::int32_t min_position_x = -1;
    std::int32_t min_position_y = -1;
    // The outer rectangle while it is neither; right and bottom are one beyond the last pixel.
    std::int32_t normal_top = 0;
    std::int32_t normal_bottom = 0;
    std::int32_t normal_left = 0;
    std::int32_t normal_right = 0;
    std::int32_t show_command = 1;  // 1: normal, 2: minimised, 3: maximised; 0: hidden; others see the port
    bool operator==(const Placement&) const = default;
};

class WindowPlacement {
 public:
    using NativeWindow = std::uintptr_t;  // the window's handle as the program knows it

    virtual ~WindowPlacement() = default;
    // Nothing when there is no such window.
    virtual std::optional<Placement> Get(NativeWindow window) const = 0;
    // Moves the window and applies the show command, without checking whether the window fits on a screen.
    // False when there is no such window.
    virtual bool Set(NativeWindow window, const Placement& placement) = 0;
};

}  // namespace kq
