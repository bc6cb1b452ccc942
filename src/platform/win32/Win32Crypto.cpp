// The bus's primitives from the system's cryptography.
#include <limits>
#include <stdexcept>
#include <vector>

#include "platform/Crypto.h"
#include "platform/win32/Win32Api.h"
#include "platform/win32/Win32Platform.h"

namespace kq {
namespace {

constexpr std::size_t kHashSize = 32;

void Check(NTSTATUS status) {
    if (status < 0) throw std::runtime_error("the system's cryptography is not available");
}

ULONG Length(std::size_t size) {
    if (size > std::numeric_limits<ULONG>::max()) throw std::length_error("text");
    return static_cast<ULONG>(size);
}

// The calls take their input as if they wrote to it, and an empty one not as a null pointer.
unsigned char* Bytes(std::string_view text) {
    return reinterpret_cast<unsigned char*>(const_cast<char*>(text.empty() ? "" : text.data()));
}

std::string Hex(const std::vector<unsigned char>& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

class Provider {
 public:
    Provider() {
        Check(BCryptOpenAlgorithmProvider(&handle_, BCRYPT_SHA256_ALGORITHM, nullptr,
                                          BCRYPT_ALG_HANDLE_HMAC_FLAG));
    }
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;
    ~Provider() { BCryptCloseAlgorithmProvider(handle_, 0); }
    BCRYPT_ALG_HANDLE Get() const { return handle_; }

 private:
    BCRYPT_ALG_HANDLE handle_ = nullptr;
};

class Hash {
 public:
    Hash(const Provider& provider, std::string_view key) {
        Check(BCryptCreateHash(provider.Get(), &handle_, nullptr, 0, Bytes(key), Length(key.size()), 0));
    }
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;
    ~Hash() { BCryptDestroyHash(handle_); }

    std::vector<unsigned char> Of(std::string_view text) {
        Check(BCryptHashData(handle_, Bytes(text), Length(text.size()), 0));
        std::vector<unsigned char> result(kHashSize);
        Check(BCryptFinishHash(handle_, result.data(), Length(result.size()), 0));
        return result;
    }

 private:
    BCRYPT_HASH_HANDLE handle_ = nullptr;
};

class Win32Crypto final : public Crypto {
 public:
    std::string RandomHex(std::size_t count) override {
        std::vector<unsigned char> bytes(count);
        if (count > 0)
            Check(BCryptGenRandom(nullptr, bytes.data(), Length(count), BCRYPT_USE_SYSTEM_PREFERRED_RNG));
        return Hex(bytes);
    }

    std::string HmacSha256Hex(std::string_view key, std::string_view text) const override {
        return Hex(Hash(provider_, key).Of(text));
    }

    bool EqualConstantTime(std::string_view a, std::string_view b) const override {
        if (a.size() != b.size()) return false;
        volatile unsigned char difference = 0;
        for (std::size_t i = 0; i < a.size(); ++i)
            difference = static_cast<unsigned char>(difference | (a[i] ^ b[i]));
        return difference == 0;
    }

 private:
    Provider provider_;
};

}  // namespace

std::shared_ptr<Crypto> MakeWin32Crypto() {
    return std::make_shared<Win32Crypto>();
}

}  // namespace kq
