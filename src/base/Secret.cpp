// Overwriting memory that held a password. The text's whole capacity is wiped, not only its length: a
// shortened text leaves its old characters behind the end.
#include <kqappsession/Secret.h>

namespace kq {

void WipeMemory(void* data, std::size_t size) noexcept {
    volatile auto* bytes = static_cast<volatile unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = 0;
}

void Wipe(std::string& text) noexcept {
    // Growing to the capacity allocates nothing and makes every byte of it one of the text's own.
    text.resize(text.capacity());
    WipeMemory(text.data(), text.size());
    text.clear();
}

Secret& Secret::operator=(const Secret& other) {
    if (this != &other) {
        std::string copy = other.text_;
        Wipe(text_);
        text_.swap(copy);
        // A short text lives inside the object: what the swap copied out of `copy` is still there.
        Wipe(copy);
    }
    return *this;
}

Secret& Secret::operator=(Secret&& other) noexcept {
    if (this != &other) {
        Wipe(text_);
        text_.swap(other.text_);
        Wipe(other.text_);  // as above
    }
    return *this;
}

}  // namespace kq
