// The few primitives with which peers of the bus prove that they know the shared key.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kq {

class Crypto {
 public:
    virtual ~Crypto() = default;
    // `count` bytes from the system's random source, as lower-case hexadecimal text (2 * count characters).
    virtual std::string RandomHex(std::size_t count) = 0;
    // HMAC-SHA-256 as lower-case hexadecimal text (64 characters). Keys of any length.
    virtual std::string HmacSha256Hex(std::string_view key, std::string_view text) const = 0;
    // Takes the same time wherever the texts differ.
    virtual bool EqualConstantTime(std::string_view a, std::string_view b) const = 0;
};

}  // namespace kq
