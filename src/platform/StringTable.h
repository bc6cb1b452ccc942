// The platform's loader of resource strings; it alone chooses the language.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Languages.h"

namespace kq {

class StringTable {
 public:
    virtual ~StringTable() = default;
    // The language of its texts, without the country.
    virtual Tongue Language() const = 0;
    // The text of an id in the chosen language; nothing when the table has no such id.
    virtual std::optional<std::string> Load(std::int32_t id) const = 0;
};

}  // namespace kq
