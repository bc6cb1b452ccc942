// A password on its way: cannot be printed or compared by accident, and overwrites its memory when it goes.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <kqappsession/Export.h>

namespace kq {

// Overwrites `size` bytes in a way that the optimiser keeps.
KQ_EXPORT void WipeMemory(void* data, std::size_t size) noexcept;
KQ_EXPORT void Wipe(std::string& text) noexcept;

class KQ_EXPORT Secret {
 public:
    Secret() = default;
    explicit Secret(std::string_view text) : text_(text) {}
    explicit Secret(const char* text) : text_(text) {}
    explicit Secret(std::string&& text) : text_(text) { Wipe(text); }
    Secret(const Secret&) = default;
    Secret(Secret&& other) noexcept { *this = std::move(other); }
    Secret& operator=(const Secret& other);
    Secret& operator=(Secret&& other) noexcept;
    ~Secret() { Wipe(text_); }

    bool Empty() const { return text_.empty(); }
    // The only way to the text; whoever calls it keeps it out of logs and error texts.
    const std::string& Reveal() const { return text_; }

 private:
    std::string text_;
};

}  // namespace kq
