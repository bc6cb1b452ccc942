// The host program's own object, asked for its properties by name at run time ("Path", "ProductName",
// "EXEName", "Major" and so on).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kq {

class AppObject {
 public:
    virtual ~AppObject() = default;
    // The property as text; nothing when the object has none of that name.
    virtual std::optional<std::string> Property(std::string_view name) const = 0;
};

}  // namespace kq
