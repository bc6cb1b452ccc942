// Names for copies.
#pragma once

#include <functional>
#include <string>

namespace kq {

// `proposed` itself, else `proposed` followed by 2, 3 and so on, whichever does not exist first. Raises
// RuntimeError::Overflow when 32,767 is taken, too: the counter has 16 bits.
std::string UniqueName(const std::string& proposed, const std::function<bool(const std::string&)>& exists);

// The name that is proposed for a copy: "Copy of " and the original's name, or that name itself when it
// begins so already, made unique. Empty when that overflows.
std::string NameForCopy(const std::string& original, const std::function<bool(const std::string&)>& exists);

}  // namespace kq
