// The bus's primitives from libsodium.
#include <array>
#include <stdexcept>
#include <vector>

#include <sodium.h>

#include <kqappsession/Secret.h>

#include "platform/Crypto.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

std::string Hex(const unsigned char* bytes, std::size_t count) {
    std::string text(2 * count + 1, '\0');
    sodium_bin2hex(text.data(), text.size(), bytes, count);
    text.resize(2 * count);
    return text;
}

// An empty view may point nowhere, which the library does not take.
const unsigned char* Bytes(std::string_view text) {
    if (text.empty()) text = "";
    return reinterpret_cast<const unsigned char*>(text.data());
}

class SodiumCrypto final : public Crypto {
 public:
    SodiumCrypto() {
        if (sodium_init() < 0) throw std::runtime_error("the system has no source of random numbers");
    }

    std::string RandomHex(std::size_t count) override {
        if (count == 0) return {};
        std::vector<unsigned char> bytes(count);
        randombytes_buf(bytes.data(), bytes.size());
        return Hex(bytes.data(), bytes.size());
    }

    std::string HmacSha256Hex(std::string_view key, std::string_view text) const override {
        crypto_auth_hmacsha256_state state;
        crypto_auth_hmacsha256_init(&state, Bytes(key), key.size());
        crypto_auth_hmacsha256_update(&state, Bytes(text), text.size());
        std::array<unsigned char, crypto_auth_hmacsha256_BYTES> hash;
        crypto_auth_hmacsha256_final(&state, hash.data());
        WipeMemory(&state, sizeof state);
        return Hex(hash.data(), hash.size());
    }

    bool EqualConstantTime(std::string_view a, std::string_view b) const override {
        return a.size() == b.size() && (a.empty() || sodium_memcmp(a.data(), b.data(), a.size()) == 0);
    }
};

}  // namespace

std::shared_ptr<Crypto> MakeSodiumCrypto() {
    return std::make_shared<SodiumCrypto>();
}

}  // namespace kq
