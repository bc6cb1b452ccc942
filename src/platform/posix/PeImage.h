// The resource section of an executable file (PE, 32 or 64 bits), found without running or mapping anything.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kq {

// Little-endian numbers at checked places; nothing when they would reach beyond the end.
std::optional<std::uint16_t> Word(std::span<const std::uint8_t> bytes, std::size_t at);
std::optional<std::uint32_t> DoubleWord(std::span<const std::uint8_t> bytes, std::size_t at);

// The bytes of the file's version resource; nothing when the file cannot be read, is no executable, is
// damaged or has none.
std::optional<std::vector<std::uint8_t>> ReadVersionResource(const std::string& path);

}  // namespace kq
