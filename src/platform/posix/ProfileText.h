// The text of a private-profile file: finding a value, setting one. All other lines are unchanged, comments,
// empty lines and line endings included.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kq {

// The value of the first such key in the first section of that name, outer blanks and one pair of quotation
// marks dropped; nothing when there is none.
std::optional<std::string> FindProfileValue(std::string_view text, std::string_view section,
                                            std::string_view key);

// The text with the value set: the key's line replaced, or a line added at the end of the section, or the
// section added at the end of the text. Nothing when section, key or value could not be read back from a
// line.
std::optional<std::string> WithProfileValue(std::string_view text, std::string_view section,
                                            std::string_view key, std::string_view value);

}  // namespace kq
