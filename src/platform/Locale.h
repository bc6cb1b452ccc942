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

// The language that the program has chosen.
class ChosenLocale final : public Locale {
 public:
    // Raises RuntimeError::InvalidProcedureCall unless `id` has the form of a locale identifier: 1 to 0xFFFF,
    // with a primary language in its lower ten bits.
    explicit ChosenLocale(std::int32_t id);
    std::int32_t UserLocaleId() const override { return id_; }

 private:
    std::int32_t id_;
};

}  // namespace kq
