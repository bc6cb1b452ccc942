// The few words that no text table has, because elsewhere the system writes them on its own message boxes.
#pragma once

#include <cstdint>
#include <string_view>

namespace kq {

struct TtyWords {
    std::string_view ok, cancel, yes, no;
    std::string_view replace;  // asks whether to replace a file; the path is in front of it
};

// In the language that the text tables have for a locale identifier: whose texts are English, for want of a
// table of its own, reads English on the buttons, too.
const TtyWords& TtyWordsOf(std::int32_t locale);

}  // namespace kq
