// A password in memory. A Secret cannot be printed or compared by accident, and overwrites its memory when it
// is destroyed or assigned to.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <kqappsession/Export.h>

namespace kq {

// Overwrites `size` bytes with zeros; the compiler does not optimise that away.
KQ_EXPORT void WipeMemory(void* data, std::size_t size) noexcept;
// Overwrites the text with its whole capacity and empties it.
KQ_EXPORT void Wipe(std::string& text) noexcept;

class KQ_EXPORT Secret {
 public:
    Secret() = default;
    explicit Secret(std::string_view text) : text_(text) {}
    explicit Secret(const char* text) : text_(text) {}
    explicit Secret(std::string&& text) : text_(text) { Wipe(text); }  // wipes the argument
    Secret(const Secret&) = default;
    Secret(Secret&& other) noexcept { *this = std::move(other); }
    Secret& operator=(const Secret& other);
    Secret& operator=(Secret&& other) noexcept;
    ~Secret() { Wipe(text_); }

    bool Empty() const { return text_.empty(); }
    // The only access to the text. Whoever calls it keeps the text out of logs and error descriptions.
    const std::string& Reveal() const { return text_; }

 private:
    std::string text_;
};

}  // namespace kq
