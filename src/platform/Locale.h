// The user's language.
#pragma once

#include <cstdint>

namespace kq {

class Locale {
 public:
    virtual ~Locale() = default;
    // The user's default locale identifier (1033 is English, United States).
    virtual std::int32_t UserLocaleId() const = 0;
};

}  // namespace kq
