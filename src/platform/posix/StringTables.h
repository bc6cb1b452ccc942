// The texts of all languages as the build compiled them in from resources/strings.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kq {

struct StringEntry {
    std::int32_t id;
    std::string_view text;
};

struct LanguageTable {
    std::int32_t language;                 // locale identifier
    std::span<const StringEntry> entries;  // ids rise
};

// Defined in the generated source.
std::span<const LanguageTable> LanguageTables();

}  // namespace kq
