// The host program's own object, asked for its properties by name at run time ("Path", "ProductName",
// "EXEName", "Major" and so on).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <kqappsession/Export.h>

namespace kq {

class KQ_EXPORT AppObject {
 public:
    virtual ~AppObject() = default;
    // The property as text; nothing when the object has none of that name. Called on the loop's thread. May
    // raise: a silent login raises the Error unchanged, an interactive one asks whether to try again, and
    // KQAppSessServer::Listen raises it after its other steps. An exception of another type reaches the
    // caller.
    virtual std::optional<std::string> Property(std::string_view name) const = 0;
};

}  // namespace kq
