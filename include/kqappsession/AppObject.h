// The host program's own object. The library asks it for properties by name: "Path", "ProductName",
// "EXEName", "Major", "Minor", "Revision" and others.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <kqappsession/Export.h>

namespace kq {

class KQ_EXPORT AppObject {
 public:
    virtual ~AppObject() = default;
    // The property as text; nothing when the object has no property of that name. Called on the loop's
    // thread, by the login procedures and by KQAppSessServer::Listen.
    //
    // May raise. A silent login raises the Error unchanged, an interactive one asks whether to try again, and
    // Listen raises it after its other steps. An exception of another type reaches the caller of the
    // procedure.
    virtual std::optional<std::string> Property(std::string_view name) const = 0;
};

}  // namespace kq
