// The rules for passwords, and how they are stored: as an argon2id hash, which contains its own parameters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <kqappsession/Secret.h>

#include "zeb/store/Refusal.h"

namespace kq::zeb {

inline constexpr std::size_t kMinPassword = 8;  // characters
inline constexpr std::size_t kMaxPassword = 64;

// The characters of a UTF-8 text; nothing when it is ill-formed.
std::optional<std::size_t> CountCharacters(std::string_view text);
// The first `count` characters of a UTF-8 text, and no more than 4 * `count` bytes of an ill-formed one.
std::string FirstCharacters(std::string_view text, std::size_t count);
bool HasControlCharacter(std::string_view text);  // U+0000 to U+001F, U+007F to U+009F

// Why `password` cannot be the new password of `login`; None if it can. `old_password` is empty for a user
// who does not have one yet.
Refusal CheckNewPassword(const Secret& password, std::string_view login, const Secret& old_password = {});

// Makes and checks hashes. Both calls take long, and may run on several threads at the same time.
class PasswordHasher {
 public:
    virtual ~PasswordHasher() = default;
    virtual std::string Hash(const Secret& password) const = 0;
    virtual bool Verify(const std::string& hash, const Secret& password) const = 0;
};

// argon2id. The default costs are the interactive ones of libsodium: 2 passes over 64 MiB.
class Argon2Hasher final : public PasswordHasher {
 public:
    struct Cost {
        std::uint64_t passes = 2;
        std::uint64_t memory = 64U << 20;  // bytes
    };
    Argon2Hasher() : Argon2Hasher(Cost()) {}
    explicit Argon2Hasher(const Cost& cost);
    // Raises kq::Error when there is not enough memory.
    std::string Hash(const Secret& password) const override;
    bool Verify(const std::string& hash, const Secret& password) const override;

 private:
    Cost cost_;
};

}  // namespace kq::zeb
