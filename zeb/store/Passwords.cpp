// The rules for new passwords, and argon2id through libsodium.
#include "zeb/store/Passwords.h"

#include <algorithm>
#include <array>

#include <sodium.h>

#include <kqappsession/Error.h>

#include "base/Convert.h"
#include "base/Utf.h"

namespace kq::zeb {

namespace {

constexpr std::size_t kMaxBytesOfCharacter = 4;

bool BeginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

}  // namespace

std::optional<std::size_t> CountCharacters(std::string_view text) {
    if (!IsValidUtf8(text)) return std::nullopt;
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::string FirstCharacters(std::string_view text, std::size_t count) {
    const std::size_t most = std::min(text.size(), count * kMaxBytesOfCharacter);
    std::size_t begun = 0;
    for (std::size_t end = 0; end < most; ++end) {
        if (BeginsCharacter(text[end]) && ++begun > count) return std::string(text.substr(0, end));
    }
    return std::string(text.substr(0, most));
}

bool HasControlCharacter(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 || c == 0x7F) return true;
        // U+0080 to U+009F are C2 80 to C2 9F.
        if (c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0) return true;
    }
    return false;
}

Refusal CheckNewPassword(const Secret& password, std::string_view login, const Secret& old_password) {
    const auto characters = CountCharacters(password.Reveal());
    if (!characters) return Refusal::MalformedPassword;
    if (!old_password.Empty() && password.Reveal() == old_password.Reveal()) return Refusal::SamePassword;
    if (EqualsIgnoringCase(password.Reveal(), login)) return Refusal::PasswordIsLogin;
    if (*characters < kMinPassword || *characters > kMaxPassword) return Refusal::PasswordLength;
    if (HasControlCharacter(password.Reveal())) return Refusal::PasswordCharacter;
    return Refusal::None;
}

Argon2Hasher::Argon2Hasher(const Cost& cost) : cost_(cost) {
    if (sodium_init() < 0)
        throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd", "libsodium does not start");
}

std::string Argon2Hasher::Hash(const Secret& password) const {
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    const auto& text = password.Reveal();
    if (crypto_pwhash_str(hash.data(), text.data(), text.size(), cost_.passes, cost_.memory) != 0)
        throw Error(NumberOf(RuntimeError::InvalidProcedureCall), "zebd",
                    "There is not enough memory for a password's hash");
    return hash.data();
}

bool Argon2Hasher::Verify(const std::string& hash, const Secret& password) const {
    // libsodium reads a fixed size.
    std::array<char, crypto_pwhash_STRBYTES> bytes{};
    if (hash.size() >= bytes.size()) return false;
    hash.copy(bytes.data(), hash.size());
    const auto& text = password.Reveal();
    return crypto_pwhash_str_verify(bytes.data(), text.data(), text.size()) == 0;
}

}  // namespace kq::zeb
