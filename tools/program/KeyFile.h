// The file with the shared key of the bus. All programs read it in the same way.
//
// A program that has the key is a peer of the bus and can answer logins. So the file must belong to one user
// alone, and the key must be long enough that it cannot be guessed from an intercepted greeting.
#pragma once

#include <cstddef>
#include <string>

#include <kqappsession/Secret.h>

namespace kq {

inline constexpr std::size_t kLeastKey = 32;       // characters
inline constexpr std::size_t kMostKeyFile = 4096;  // bytes

// The key in a file: its text without white space at the end. Raises kq::Error, with the file's name and the
// remedy in its description, unless the file
//   - is a regular file that can be read, of at most kMostKeyFile bytes,
//   - belongs to the user of this process or to root,
//   - gives nobody but its owner any access (mode & 077 is 0),
//   - holds one line of kLeastKey characters or more, in UTF-8, without control characters.
Secret ReadKeyFile(const std::string& path);

// Creates a file (mode 0600) with a new random key of 64 characters. Raises kq::Error when the file exists
// already, which is left unchanged, or cannot be created.
void MakeKeyFile(const std::string& path);

}  // namespace kq
