// What Process and FileShare have in common: the computer's name, and starting programs that are not waited
// for.
#pragma once

#include <string>
#include <vector>

namespace kq {

// The host name up to its first point, at most 15 characters.
std::string ShortHostName();

enum class Output { Kept, Discarded };

// Starts `arguments[0]` without a shell: a path as it is, a bare name looked up in PATH when `search` is set.
// The program gets a session of its own, no input and no open files of ours; its end is collected in the
// background. 0, or the system's number for why it could not be started.
int StartDetached(const std::vector<std::string>& arguments, bool search, Output output);

}  // namespace kq
