// The file with the shared key of the bus, as every program reads it.
//
// Whoever has the key is a peer of the bus and can answer logins, so the file belongs to one user alone, and
// a key is long enough that nobody guesses it from an overheard greeting.
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

// Makes a file (mode 0600) with a new random key of 64 characters. Raises kq::Error when there is such a file
// already, which stays as it is, or it cannot be made.
void MakeKeyFile(const std::string& path);

}  // namespace kq
