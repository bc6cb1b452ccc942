// The languages that the library's texts are in, by locale identifier. The string resources for Windows
// follow the same rule: see cmake/generate_strings.py.
#pragma once

#include <cstdint>

namespace kq {

enum class Tongue { English, Portuguese, Spanish };

struct TextLanguage {
    std::int32_t locale;
    Tongue tongue;
};

// The first row of a primary language is its main one.
inline constexpr TextLanguage kTextLanguages[] = {
    {1033, Tongue::English},     // United States
    {1046, Tongue::Portuguese},  // Brazil
    {2058, Tongue::Spanish},     // Mexico
    {9226, Tongue::Spanish},     // Colombia
    {10250, Tongue::Spanish},    // Peru
    {11274, Tongue::Spanish},    // Argentina
    {13322, Tongue::Spanish},    // Chile
    {14346, Tongue::Spanish},    // Uruguay
    {15370, Tongue::Spanish},    // Paraguay
};

// What an identifier says of the language without the country.
constexpr std::int32_t PrimaryLanguage(std::int32_t locale) {
    return locale & 0x3FF;
}

// The language for a user of this locale: the one of exactly that identifier, else Mexico's for other kinds
// of Spanish and Brazil's for other kinds of Portuguese, else English.
constexpr TextLanguage TextLanguageFor(std::int32_t locale) {
    for (const TextLanguage& language : kTextLanguages) {
        if (language.locale == locale) return language;
    }
    for (const TextLanguage& language : kTextLanguages) {
        if (PrimaryLanguage(language.locale) == PrimaryLanguage(locale)) return language;
    }
    return kTextLanguages[0];
}

}  // namespace kq
